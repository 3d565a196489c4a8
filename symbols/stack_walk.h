// Stack images and register sets of the dump, and the walk along the back chain.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "pmd/krd_file.h"
#include "support/out_buffer.h"
#include "symbols/load_module.h"

inline constexpr size_t CALLTRACE_TITLE_MAX = 127;
// No real stack is this deep; a chain that goes on is corrupt.
inline constexpr int STACK_WALK_MAX_FRAMES = 1000;

struct stack_image {
    std::string title;
    uint32_t start = 0;  // target address of the first byte
    uint32_t size = 0;
    std::vector<uint8_t> data;  // size bytes
};

struct register_set {
    std::string title;  // heading of the process's trace
    std::string text;   // "name=value" tokens
};

// The stack images in dump order, and an index that gives for an address
// the first of them that holds it, overlapping images included. The address
// line is cut where the set of holders changes: from cuts[i] up to cuts[i+1]
// the first holder is holder[i] (NO_STACK_IMAGE: none).
inline constexpr uint32_t NO_STACK_IMAGE = UINT32_MAX;
struct stack_images {
    std::vector<stack_image> images;
    std::vector<uint64_t> cuts;
    std::vector<uint32_t> holder;
};
stack_images index_stack_images(std::vector<stack_image> images);

stack_images read_stack_images(krd_file* f);
std::vector<register_set> read_register_sets(krd_file* f);
register_set user_register_set(uint32_t stack_pointer);
// The hexadecimal value behind the first "=" after the key's first occurrence.
bool find_register(const std::string& text, const char* key, uint32_t* value);
// The first image in dump order with start <= sp <= start + size.
const stack_image* find_stack_frame(const stack_images& stacks, uint32_t sp);

struct stack_frame {
    uint32_t back_chain;
    uint32_t saved_lr;
};
enum class walk_end { left_images, no_room, loop, too_deep };
// Visits the frames from sp on. *end_sp is where the walk stopped.
walk_end walk_stack(const stack_images& stacks, uint32_t sp,
                    const std::function<void(const stack_frame&)>& visit, uint32_t* end_sp);

// Prints the frames from sp on; each saved link register goes to print_addr,
// which ends the line.
using address_printer = std::function<void(out_buffer& out, uint32_t addr)>;
void print_stack_walk(out_buffer& out, const stack_images& stacks, uint32_t sp,
                      const address_printer& print_addr);
