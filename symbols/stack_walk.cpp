// Stack images and register sets read from the dump, and the PowerPC back
// chain walk over them. Stack words are target bytes: big-endian, read only
// through a bounded cursor.
#include "symbols/stack_walk.h"

#include <cstdlib>
#include <cstring>
#include <unordered_set>

#include "pmd/byte_cursor.h"
#include "pmd/section_chain.h"
#include "pmd/section_payload.h"
#include "symbols/target_number.h"
#include "render/out_buffer.h"

namespace {

bool is_stack_title(const std::string& t) {
    return t.find("STACK") != std::string::npos || t.starts_with("PMD stack") || t.starts_with("Stack for pid") ||
           t.starts_with("Supervisor stack");
}

std::string cut_title(std::string t) {
    if (t.size() > CALLTRACE_TITLE_MAX) t.resize(CALLTRACE_TITLE_MAX);
    return t;
}

}  // namespace

std::vector<stack_image> read_stack_images(krd_file* f) {
    std::vector<stack_image> images;
    uint32_t cursor = 0;
    for (krd_chain c = krd_find_section(f, &cursor, ""); c; c = krd_get_section(f, &cursor)) {
        if (!is_stack_title(c->title)) continue;
        krd_payload payload;
        krd_payload_status status = krd_read_chain_payload(f, c.get(), &payload);
        // Without a payload descriptor it is no memory block: not a stack.
        if (status == KRD_PAYLOAD_CORRUPT) continue;
        stack_image img;
        img.title = cut_title(c->title);
        img.start = c->image ? c->image->address : 0;
        if (status != KRD_PAYLOAD_EMPTY) {
            img.size = payload.size;
            img.data.assign(payload.bytes.get(), payload.bytes.get() + payload.size);
        }
        images.push_back(std::move(img));
        krd_free_chain(c);
    }
    return images;
}

std::vector<register_set> read_register_sets(krd_file* f) {
    static constexpr size_t prefix_length = 22;
    std::vector<register_set> sets;
    uint32_t cursor = 0;
    for (;;) {
        krd_chain c = krd_find_section(f, &cursor, "REGISTERS FOR PROCESS ");
        if (!c) c = krd_find_section(f, &cursor, "CPU registers for pid ");
        if (!c) break;
        krd_payload payload;
        if (krd_read_chain_payload(f, c.get(), &payload) == KRD_PAYLOAD_CORRUPT) continue;
        register_set set;
        std::string rest = c->title.size() > prefix_length ? c->title.substr(prefix_length) : std::string();
        set.title = cut_title("CALLTRACE FOR PROCESS " + rest);
        if (payload.bytes) {
            const char* text = reinterpret_cast<const char*>(payload.bytes.get());
            set.text.assign(text, strnlen(text, payload.size));
        }
        sets.push_back(std::move(set));
        krd_free_chain(c);
    }
    return sets;
}

register_set user_register_set(uint32_t stack_pointer) {
    char title[64], text[16];
    std::snprintf(title, sizeof title, "CALLTRACE FOR USER SUPPLIED STACKPOINTER=0x%08x", stack_pointer);
    std::snprintf(text, sizeof text, "R1=%08X ", stack_pointer);
    return {title, text};
}

bool find_register(const std::string& text, const char* key, uint32_t* value) {
    size_t at = text.find(key);
    if (at == std::string::npos) return false;
    size_t eq = text.find('=', at);
    if (eq == std::string::npos) return false;
    *value = strtoul32(text.c_str() + eq + 1, 16);
    return true;
}

const stack_image* find_stack_frame(const std::vector<stack_image>& images, uint32_t sp) {
    for (const stack_image& img : images)
        if (img.start <= sp && uint64_t(sp) <= uint64_t(img.start) + img.size) return &img;
    return nullptr;
}

walk_end walk_stack(const std::vector<stack_image>& images, uint32_t sp,
                    const std::function<void(const stack_frame&)>& visit, uint32_t* end_sp) {
    std::unordered_set<uint32_t> seen;
    for (int frames = 0;; frames++) {
        *end_sp = sp;
        const stack_image* img = find_stack_frame(images, sp);
        if (!img) return walk_end::left_images;
        if (seen.count(sp)) return walk_end::loop;
        if (frames == STACK_WALK_MAX_FRAMES) return walk_end::too_deep;
        // A frame in the image's last 8 bytes has no room for its two words.
        be_cursor frame(std::span<const uint8_t>(img->data.data(), img->size), sp - img->start);
        stack_frame fr;
        fr.back_chain = frame.u32();
        fr.saved_lr = frame.u32();
        if (!frame.ok()) return walk_end::no_room;
        visit(fr);
        seen.insert(sp);
        sp = fr.back_chain;
    }
}

void print_stack_walk(out_buffer& out, const std::vector<stack_image>& images, uint32_t sp,
                      const address_printer& print_addr) {
    uint32_t end_sp = 0;
    walk_end end = walk_stack(
        images, sp,
        [&](const stack_frame& fr) {
            out_printf(out, "\n  Back chain word     : %08x\n", fr.back_chain);
            out_printf(out, "        %08x  ", fr.saved_lr);
            print_addr(out, fr.saved_lr);
        },
        &end_sp);
    if (end == walk_end::loop) out_printf(out, "\n  Stack walk stopped: the back chain loops to %08x\n", end_sp);
    if (end == walk_end::too_deep) out_printf(out, "\n  Stack walk stopped after %d frames\n", STACK_WALK_MAX_FRAMES);
}
