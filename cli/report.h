// The run: command line, report walk and the printing of one section.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

#include "pmd/krd_file.h"
#include "pmd/section_chain.h"
#include "run/krd_options.h"
#include "run/krd_run.h"
#include "signals/signals.h"
#include "zdb_src/zdb.h"

inline constexpr const char* KRD_PRODUCT_ID = "LQZ 551 0137";
inline constexpr const char* KRD_VERSION = "R32.2";

int cmd_krd(int argc, char** argv);
int is_numeric_arg(const char* text);
void print_usage();
// Help and version go to standard error, or to standard output for --help
// and --version.
void print_help(FILE* stream = stderr);
void print_version(FILE* stream = stderr);

// Whether the report goes on after a step. RUN_ENDED: a failure that ends
// the run has been told, and the exit status is 1.
enum run_step { RUN_GO_ON = 0, RUN_ENDED = 1 };

void print_dump_header(FILE* out, krd_file* f);
run_step print_dump_sections(FILE* out, krd_file* f, krd_options* options);
void print_section_line(FILE* out, krd_file* f, krd_section* chain, uint32_t flags, uint32_t* base_sec,
                        uint32_t* base_usec);
const char* find_process_name(const char* title);

run_step print_section(FILE* out, krd_file* f, krd_section* chain, krd_options* options);
run_step print_memory_block(FILE* out, krd_file* f, krd_section* chain, krd_options* options, uint8_t first_pass);
void print_signal_block(FILE* out, krd_file* f, krd_section* chain);
// The NPC trace's two files beside the dump; false (told) if one cannot be
// created.
bool write_nexus_files(std::span<const uint8_t> payload);

// Failures that end the run, told as it ends.
void print_symbol_file_failure(const zdb_open_result& failure);
void end_run_on_read_failure(krd_file* f, int error);
