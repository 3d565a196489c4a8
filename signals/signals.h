// Symbolic signals: the signal symbol archives, queued signals, the kernel
// trace in text and in binary form. What the report driver calls.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

#include "run/krd_options.h"

// One signal on its way to print_signal.
struct krd_signal_record {
    uint32_t from_pid = 0;
    uint32_t to_pid = 0;
    const char* lmid = nullptr;  // null: no symbols, a hex dump
    uint32_t size = 0;           // signal number included
    uint32_t signo = 0;
    const uint8_t* data = nullptr;
};

// The character sink that ssmPrint writes a signal through.
using ssm_putc_fn = int (*)(int ch);

// Archive manager (ssm.cpp).
int handle_sigsymb_file(FILE* stream, krd_options* options);
int ssmUnloadAll();
int ssmPrint(const char* lmid, const uint8_t* signal, uint32_t size, ssm_putc_fn put_char);

// Signal text of the process list, signal queues and the kernel trace.
void get_process_list(std::span<const uint8_t> image, krd_options* options);
void free_process_list();
void print_signalqueue(FILE* stream, std::span<const uint8_t> text, uint32_t pid, krd_options* options);
void print_kernel_trace_signals(FILE* stream, std::span<const uint8_t> text, krd_options* options);

// The binary kernel trace of a signal block.
void print_trace_sect(FILE* stream, std::span<const uint8_t> data);

// One signal: the text in front of it, then its fields or its hex dump.
void print_signal(FILE* stream, const krd_signal_record* record, const char* text, uint32_t text_len);
// The report's character sink for ssmPrint.
int krd_fputs(int ch);
