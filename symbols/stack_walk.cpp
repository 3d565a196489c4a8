// Stack images and register sets read from the dump, and the PowerPC back
// chain walk over them. Stack words are target bytes: big-endian, read only
// through a bounded cursor.
#include "symbols/stack_walk.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <set>
#include <unordered_set>

#include "pmd/section_chain.h"
#include "pmd/section_payload.h"
#include "pmd/section_titles.h"
#include "support/byte_cursor.h"
#include "support/out_buffer.h"
#include "symbols/target_number.h"

namespace {

std::string cut_title(std::string t) {
    if (t.size() > CALLTRACE_TITLE_MAX) t.resize(CALLTRACE_TITLE_MAX);
    return t;
}

}  // namespace

stack_images index_stack_images(std::vector<stack_image> images) {
    stack_images s;
    s.images = std::move(images);
    // Each image opens at its start and closes behind its last address, the
    // end included; the open images at a cut are kept by dump order.
    struct edge {
        uint64_t at;
        uint32_t image;
        bool opens;
    };
    std::vector<edge> edges;
    edges.reserve(2 * s.images.size());
    for (uint32_t i = 0; i < s.images.size(); i++) {
        const stack_image& img = s.images[i];
        edges.push_back({img.start, i, true});
        edges.push_back({uint64_t(img.start) + img.size + 1, i, false});
    }
    std::sort(edges.begin(), edges.end(), [](const edge& a, const edge& b) { return a.at < b.at; });
    std::set<uint32_t> open;
    for (size_t e = 0; e < edges.size();) {
        const uint64_t at = edges[e].at;
        for (; e < edges.size() && edges[e].at == at; e++) {
            if (edges[e].opens) open.insert(edges[e].image);
            else open.erase(edges[e].image);
        }
        const uint32_t first = open.empty() ? NO_STACK_IMAGE : *open.begin();
        if (!s.holder.empty() && s.holder.back() == first) continue;
        s.cuts.push_back(at);
        s.holder.push_back(first);
    }
    return s;
}

stack_images read_stack_images(krd_file* f) {
    std::vector<stack_image> images;
    uint32_t cursor = 0;
    for (krd_chain c = krd_find_section(f, &cursor, ""); c; c = krd_get_section(f, &cursor)) {
        if (!is_walked_stack_title(c->title)) continue;
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
    return index_stack_images(std::move(images));
}

// The sections titled "REGISTERS FOR PROCESS " in dump order, then those
// titled "CPU registers for pid " behind the last of them: what searching
// for the first title and, where it fails, for the second from the same
// place gives, found in one walk.
std::vector<register_set> read_register_sets(krd_file* f) {
    static_assert(process_registers_title.size() == cpu_registers_title.size());
    static constexpr size_t prefix_length = process_registers_title.size();
    std::vector<krd_chain> process_sets, cpu_sets;
    uint32_t cursor = 0;
    for (krd_chain c = krd_find_section(f, &cursor, ""); c; c = krd_get_section(f, &cursor)) {
        if (holds_process_registers_title(c->title)) {
            process_sets.push_back(std::move(c));
            cpu_sets.clear();
        } else if (holds_cpu_registers_title(c->title)) {
            cpu_sets.push_back(std::move(c));
        }
    }
    for (krd_chain& c : cpu_sets) process_sets.push_back(std::move(c));

    std::vector<register_set> sets;
    for (krd_chain& c : process_sets) {
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

const stack_image* find_stack_frame(const stack_images& stacks, uint32_t sp) {
    auto behind = std::upper_bound(stacks.cuts.begin(), stacks.cuts.end(), uint64_t(sp));
    if (behind == stacks.cuts.begin()) return nullptr;
    const uint32_t first = stacks.holder[size_t(behind - stacks.cuts.begin()) - 1];
    return first == NO_STACK_IMAGE ? nullptr : &stacks.images[first];
}

walk_end walk_stack(const stack_images& stacks, uint32_t sp,
                    const std::function<void(const stack_frame&)>& visit, uint32_t* end_sp) {
    std::unordered_set<uint32_t> seen;
    for (int frames = 0;; frames++) {
        *end_sp = sp;
        const stack_image* img = find_stack_frame(stacks, sp);
        if (!img) return walk_end::left_images;
        if (seen.count(sp)) return walk_end::loop;
        if (frames == STACK_WALK_MAX_FRAMES) return walk_end::too_deep;
        // A frame in the image's last 8 bytes has no room for its two words.
        byte_cursor frame(std::span<const uint8_t>(img->data.data(), img->size), sp - img->start);
        stack_frame fr;
        fr.back_chain = frame.u32();
        fr.saved_lr = frame.u32();
        if (!frame.ok()) return walk_end::no_room;
        visit(fr);
        seen.insert(sp);
        sp = fr.back_chain;
    }
}

void print_stack_walk(out_buffer& out, const stack_images& stacks, uint32_t sp,
                      const address_printer& print_addr) {
    uint32_t end_sp = 0;
    walk_end end = walk_stack(
        stacks, sp,
        [&](const stack_frame& fr) {
            out_printf(out, "\n  Back chain word     : %08x\n", fr.back_chain);
            out_printf(out, "        %08x  ", fr.saved_lr);
            print_addr(out, fr.saved_lr);
        },
        &end_sp);
    if (end == walk_end::loop) out_printf(out, "\n  Stack walk stopped: the back chain loops to %08x\n", end_sp);
    if (end == walk_end::too_deep) out_printf(out, "\n  Stack walk stopped after %d frames\n", STACK_WALK_MAX_FRAMES);
}
