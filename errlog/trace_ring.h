// The trace ring: variable-length blocks in one memory area that survives a
// restart and can be found again by its magic bytes.
//
// A ring lives in a byte image and is named by the position of its 44-byte
// header there. Every address the ring stores is a position in that image,
// and every number is big-endian. Reads outside the image give 0, writes
// outside it are dropped, so a lying ring can be walked but never overrun.
#pragma once

#include <cstdint>
#include <span>

inline constexpr uint32_t TRACE_HEADER_SIZE = 44;
inline constexpr uint32_t TRACE_UNIT = 16;

// Header fields, by offset from the ring's position.
inline constexpr uint32_t TRACE_HEAD = 0, TRACE_TAIL = 4, TRACE_START = 8, TRACE_END = 12, TRACE_ENABLED = 16,
                          TRACE_GENERATION = 17, TRACE_VERSION = 18, TRACE_MAGIC = 19, TRACE_NAME = 27;
inline constexpr uint32_t TRACE_NAME_SIZE = 16;
inline constexpr char TRACE_MAGIC_TEXT[] = "IsAtRaCe";

// Block head fields, by offset from the block's position.
inline constexpr uint32_t BLOCK_TICKS = 0, BLOCK_MICROSECS = 4, BLOCK_SIZE = 8, BLOCK_UNITS = 10, BLOCK_SKIP = 12,
                          BLOCK_STATE = 13, BLOCK_GENERATION = 14;

// Block states.
inline constexpr uint8_t TRACE_FINISHED = 0, TRACE_WRITING = 1, TRACE_SUB_WRITING = 2, TRACE_SUB_FINISHED = 4;

// A reader's position in a ring.
struct trace_cursor {
    uint32_t data = 0;  // data of the current block
    uint16_t size = 0;
    uint32_t ticks = 0;
    uint32_t microsecs = 0;
    uint8_t version = 0;
    std::span<uint8_t> image;  // with `ring`, the ring header
    uint32_t ring = 0;
    char name[TRACE_NAME_SIZE + 1] = {};
};

void create_trace(std::span<uint8_t> image, uint32_t ring, uint32_t size, const char* name);
// 0 for a sound ring (left disabled), else the code of the failed check,
// after the ring has been replaced by a fresh one.
int recover_trace(std::span<uint8_t> image, uint32_t ring, uint32_t size, const char* name);
void clear_trace(std::span<uint8_t> image, uint32_t ring);
void enable_trace(std::span<uint8_t> image, uint32_t ring);
void disable_trace(std::span<uint8_t> image, uint32_t ring);
int get_trace_status(std::span<const uint8_t> image, uint32_t ring);

// The position of the new block's data, or 0 for nothing.
uint32_t alloc_trace(std::span<uint8_t> image, uint32_t ring, uint16_t size);
void free_trace(std::span<uint8_t> image, uint32_t data);
uint32_t alloc_subtrace(std::span<uint8_t> image, uint32_t ring, uint16_t size);
void free_subtrace(std::span<uint8_t> image, uint32_t data);

// 1 with the cursor on the first visible block of a ring found in `size`
// bytes from `area`; 0 for no ring or no visible block.
int find_trace(std::span<uint8_t> image, uint32_t area, uint32_t size, const char* name, trace_cursor* cursor);
// 1 with the cursor on the next visible block, 0 at the end.
int get_trace(trace_cursor* cursor);

// Ticks for a microsecond count: the value divided by 4000. Writes nothing.
uint32_t get_systime(uint32_t* microsecs);
// A hook: where alloc_trace takes its time stamp. Given the block's
// microsecond field, it may fill it and returns the ticks. get_systime unless
// replaced.
extern uint32_t (*trace_systime)(uint32_t* microsecs);

// Units of a block asked for with `size` bytes: the head and one more than
// the whole units in `size`.
inline uint32_t trace_units_for(uint32_t size) { return (size >> 4) + 2; }
