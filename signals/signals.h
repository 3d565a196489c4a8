// Symbolic signals: the signal symbol archives, queued signals, the kernel
// trace in text and in binary form.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

#include "cli/krd_options.h"

struct krd_signal_record {
    uint32_t from_pid = 0;
    uint32_t to_pid = 0;
    const char* lmid = nullptr;
    uint32_t size = 0;
    uint32_t signo = 0;
    const uint8_t* data = nullptr;
};

// The character sink that ssmPrint writes a signal through.
using ssm_putc_fn = int (*)(int ch);

int handle_sigsymb_file(FILE* stream, krd_options* options);
int ssmUnloadAll();
int ssmPrint(const char* lmid, const uint8_t* data, uint32_t size, ssm_putc_fn out);
void free_process_list();
void get_process_list(std::span<const uint8_t> text, krd_options* options);
void print_signalqueue(FILE* stream, std::span<const uint8_t> text, uint32_t pid, krd_options* options);
void print_kernel_trace_signals(FILE* stream, std::span<const uint8_t> text, krd_options* options);
void print_trace_sect(FILE* stream, std::span<const uint8_t> data);
