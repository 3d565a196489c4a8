#include "support/out_buffer.h"

#include <cstdarg>
#include <string>

// Formats straight into the block; a longer result (a stamp such as 1e4000
// prints thousands of digits) is formatted a second time apart.
void out_printf(out_buffer& out, const char* format, ...) {
    va_list args, again;
    va_start(args, format);
    va_copy(again, args);
    char* at = out.reserve(256);
    size_t room = out_buffer::capacity - out.used;
    int n = std::vsnprintf(at, room, format, args);
    va_end(args);
    if (n >= 0 && size_t(n) < room) {
        out.commit(size_t(n));
    } else if (n > 0) {
        // Longer than the room left: format apart and copy.
        std::string text(size_t(n) + 1, '\0');
        std::vsnprintf(text.data(), text.size(), format, again);
        out.put(text.data(), size_t(n));
    }
    va_end(again);
}
