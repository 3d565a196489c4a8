#include "render/section_blocks.h"

#include "pmd/section_payload.h"

void print_error_info(FILE* stream, krd_file* f, krd_section* node) {
    auto e = krd_read_errinfo(f, node);
    if (!e) return;
    std::fprintf(stream, "  user called :  %d\n", int(e->user_called));
    std::fprintf(stream, "  error code  :  0x%08x\n", e->error_code);
    std::fprintf(stream, "  extra       :  0x%08x\n", e->extra);
    std::fprintf(stream, "  curr_proc   :  0x%08x\n", e->curr_proc);
}

void print_program_list(FILE* stream, krd_file* f, krd_section* node) {
    uint32_t position = 0;
    uint32_t count = krd_init_proginfo(f, node, &position);
    if (count == 0) {
        std::fputs("  Corrupt Section.\n", stream);
        return;
    }
    const uint32_t end = position + count;
    while (position < end) {
        auto p = krd_get_proginfo(f, &position);
        if (!p) {
            std::fputs("  Corrupt Section.\n", stream);
            return;
        }
        std::fprintf(stream, "\n  LMID             : %s\n", p->lmid);
        std::fprintf(stream, "  zzmain_pid       : %#-8x\n", p->zzmain_pid);
        std::fprintf(stream, "  Resident         : %s\n", p->resident ? "True" : "False");
        std::fprintf(stream, "  status           : %s\n", p->status ? "Loaded" : "Running");
        for (uint32_t i = 0; i < p->region_count; i += 2) {
            // An odd count has no size word for its last start: shown as 0.
            uint32_t size = i + 1 < p->region_count ? p->regions[i + 1] : 0;
            std::fprintf(stream, "  Start Section %2d : %08x   Size: %08x\n", int(i), p->regions[i], size);
        }
    }
}

void print_register_block(FILE* stream, krd_file* f, krd_section* node) {
    uint32_t position = 0;
    uint32_t count = krd_init_reginfo(f, node, &position);
    if (count == 0) {
        std::fputs("  Corrupt Section.\n", stream);
        return;
    }
    const uint32_t end = position + count;
    std::fputc('\n', stream);
    while (position < end) {
        auto e = krd_get_reginfo(f, &position);
        if (!e) {
            std::fputs("  Corrupt section.\n", stream);
            return;
        }
        std::fprintf(stream, "  %5s = %08x\n", e->name.c_str(), e->value);
    }
}

void print_text_block(FILE* stream, krd_file* f, krd_section* node) {
    uint32_t count = krd_init_text(f, node);
    if (count == 0) {
        std::fputs("  Corrupt Section.\n", stream);
        return;
    }
    std::fputs("  ", stream);
    // Past the end of the file the getter reads zeros, which end the text.
    for (uint32_t i = 0; i < count; i++) {
        uint8_t b = krd_get_byte(f);
        if (b == 0) break;
        if (b == '\r') continue;
        std::fputc(b, stream);
        if (b == '\n') std::fputs("  ", stream);
    }
    std::fputc('\n', stream);
}
