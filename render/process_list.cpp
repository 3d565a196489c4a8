#include <cstdio>

#include "render/dump_printers.h"
#include "render/process_list.h"

// The Nexus report finds process names in this file; it gets exactly the
// lines the report shows for the section.
void print_text_process_dump(FILE* stream, std::span<const uint8_t> text) {
    FILE* file = std::fopen("Proc_list_temp.txt", "w");
    if (!file) {
        std::perror("fopen:");
        return;
    }
    print_text_dump(stream, text);
    print_text_dump(file, text);
    std::fclose(file);
}
