#include <cstdio>
#include <string>

#include "cli/report.h"
#include "render/dump_printers.h"

// The raw NPC trace beside the dump, in hex and in binary.
bool write_nexus_files(std::span<const uint8_t> payload) {
    const std::string dump = the_run().dump_file_name;
    std::string hex_name = dump + ".nexus.hex";
    std::string bin_name = dump + ".nexus.bin";
    FILE* hex = std::fopen(hex_name.c_str(), "w");
    if (!hex) {
        std::perror("fopen:");
        return false;
    }
    print_hex_bytes(hex, payload);
    std::fclose(hex);
    FILE* bin = std::fopen(bin_name.c_str(), "w");
    if (!bin) {
        std::perror("fopen:");
        return false;
    }
    std::fwrite(payload.data(), 1, payload.size(), bin);
    std::fclose(bin);
    return true;
}
