// What a printer writes to a stream, as a string: for tests of printers.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

template <class Print>
std::string capture(Print&& print) {
    char* buf = nullptr;
    size_t len = 0;
    FILE* f = open_memstream(&buf, &len);
    print(f);
    std::fclose(f);
    std::string s(buf, len);
    std::free(buf);
    return s;
}
