// Printers of an error record's data, chosen by the error's detail kind or
// by a fixed error code. All read the data through the ring cursor and may
// read lg_record.
#pragma once

#include <cstdint>
#include <cstdio>

#include "errlog/log_area.h"

// Codes that choose a printer without the catalogue.
constexpr uint32_t LG_REGDUMP_ERROR = 0x113;               // kernel: upper half holds the exception offset
constexpr uint32_t LG_TAVLO_SOFT_WATCHDOG = 0x1004D;       // TAVLO: the load report
constexpr uint32_t LG_TAVLO_WRITE_ADDRESS_ZERO = 0x6001A;  // TAVLO: 32 bytes from address 0
constexpr uint32_t LG_ASSERTION_ERROR = 0xFFFFFFFF;        // error API: a failed assertion
constexpr uint32_t LG_WATCHDOG_OVERLOAD = 0xE9B8F0EF;
constexpr uint32_t LG_COLD_START_ERROR = 4;

constexpr uint32_t LG_FRAME_SIZE = 168;    // register frame, 42 words
constexpr uint32_t LG_REGDUMP_SIZE = 200;  // exception register dump
constexpr uint32_t LG_REGDUMP_MARKER = 0x2DAEA;
constexpr uint32_t LG_NO_HEAP_INFO = 0xDEADEAD;
constexpr uint32_t LG_NO_FILE_OFFSET = 0xFFFFFFFF;

// `length` bytes from the ring, `width` (at most 16) a line.
void lg_hexdump(FILE* stream, lg_cursor cursor, uint32_t length, uint32_t width);
// The general printer: an assertion, text, or a hex dump. `length` is the data's length.
void lg_print_error_info(FILE* stream, uint32_t length);
void lg_print_exception(FILE* stream, lg_cursor cursor);
void lg_print_regdump(FILE* stream, lg_cursor cursor);
void lg_print_heap_info(FILE* stream, lg_cursor cursor);
// The soft watchdog's words and its load report, from lg_record.data.
void lg_print_load_report(FILE* stream);
