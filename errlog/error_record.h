// One record of the error log: decoded into lg_record, then printed.
#pragma once

#include <cstdint>
#include <cstdio>

#include "errlog/log_area.h"

// Flags byte of a record.
constexpr uint8_t LG_FLAG_RESTART = 0x80;  // restart block present
constexpr uint8_t LG_FLAG_BACKUP = 0x40;   // with the restart block: run mode BACKUP
constexpr uint8_t LG_FLAG_RANK = 0x08;     // rank byte present

constexpr uint32_t LG_FIXED_HEAD = 20;
// A data length beyond the largest gets this one.
constexpr uint32_t LG_MAX_DATA = 368;
constexpr uint32_t LG_OVERSIZE_DATA = 375;

// The decoded current record; cleared before each decoding, so what a record
// doesn't carry reads as 0 or as a null cursor.
struct lg_record_fields {
    uint32_t ext_len;
    uint32_t data_len;
    uint32_t error_code;
    uint16_t flags;
    uint16_t reporter;
    char date[12];
    char time[12];
    uint32_t queued_signals;
    uint32_t owned_signals;
    uint32_t line;
    lg_cursor file;
    lg_cursor process;
    uint8_t restart_type;
    uint32_t pmd_identity;
    uint8_t restart_rank;
    lg_cursor data;
};

extern lg_record_fields lg_record;

// Whether a record with these flags and head length carries the process block.
bool lg_has_process_block(uint32_t flags, uint32_t ext_len);

// Decodes record `index`, counted from 0 in walking order, into lg_record.
void lg_read_entry(uint32_t index);
// Prints the record that lg_record holds; `index` only numbers it.
void lg_print_entry(FILE* stream, uint32_t index);
