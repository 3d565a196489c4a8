// Everything of a run that outlives one section of the report, in one
// record. There is one run per process: the_run() reaches it from anywhere,
// and cmd_krd begins every run with start_run(). What lives within one
// section or one call stays with the code that uses it.
#pragma once

#include <cstdint>
#include <memory>

#include "run/krd_options.h"

// Parts of the run whose types belong to a component: defined there (in
// the file named beside each declaration below), owned here. run/ depends on none of
// them: a part is made, and its deleter chosen, by the component on first use.
template <class T>
struct run_part {
    std::unique_ptr<T, void (*)(T*)> held{nullptr, nullptr};

    static void remove(T* p) { delete p; }

    // Instantiated only where T is complete, i.e. inside its component,
    // which may give what releases the part with the record.
    T& get(void (*release)(T*) = remove) {
        if (!held) held = {new T(), release};
        return *held;
    }
};

struct process_table;    // render/process_list.h
struct system_params;    // render/section_blocks.h
struct pid_table;        // signals/sig_text.h
struct pid_name_list;    // signals/kernel_trace_bin.h
struct SsmDataBase;      // signals/ssm.h
struct ssm_kept;         // signals/ssm.cpp
struct cross_tool_state; // symbols/cross_tool.cpp
struct pc_addr_cache;    // symbols/address_print.cpp

struct krd_run {
    // The command line. Only sigsym_failed and zip_current change during
    // the report.
    krd_options options;
    // The dump's path as given, and -N / -nexus_files: the Nexus files are
    // written beside the dump.
    const char* dump_file_name = nullptr;
    int nexus_files = 0;

    // The T&E heading has been printed: the logs of all T&E sections follow
    // under one heading.
    int te_heading_done = 0;
    // The process row table (process_rows, process_row_count,
    // process_row_capacity), read from PROCESS LIST at the start of the walk,
    // for the names of processes in headings, the listing and the swap-in list.
    run_part<process_table> process_rows;
    // The SYSTEM PARAMETERS section of the dump (by its serial), read at the
    // first lookup: every T&E and swap-in section asks.
    run_part<system_params> system_params_read;
    uint64_t system_params_serial = 0;

    // The pid table (pid_lm_rows, pid_lm_count, pid_lm_capacity): the load
    // module of each process, from the first pass over PROCESS LIST with -z.
    run_part<pid_table> pid_lm_rows;
    // Names of processes from the binary kernel trace's name records; kept
    // for the next trace when one ends with an end-of-trace record.
    run_part<pid_name_list> pidNameList;
    // The signal symbol data base: the selected archive and its members.
    run_part<SsmDataBase> db;
    // What the archives gave, kept across selections: their listings and
    // the members' tables.
    run_part<ssm_kept> ssm_archives;

    // The Nexus report's rebuilt addresses, over all its sections.
    uint32_t last_addr = 0;  // the running full address, all cores together
    uint32_t pc_ptbm = 0;    // the address last rebuilt from a U-ADDR
    // Per core, the last full address taken from a PC field.
    uint32_t F_ADDR_core0 = 0, F_ADDR_core1 = 0, F_ADDR_core2 = 0, F_ADDR_core3 = 0;
    uint32_t F_ADDR_core4 = 0, F_ADDR_core5 = 0, F_ADDR_core6 = 0, F_ADDR_core7 = 0;

    // Address translation, for the call traces and the Nexus report: the
    // cross tool's path, its processes and their answers; whether its absence
    // has been told (once per run); the load module list and -e file that
    // print_pc_addr keeps between its calls.
    run_part<cross_tool_state> cross_tool;
    int cross_tool_missing_told = 0;
    run_part<pc_addr_cache> pc_addr;
};

krd_run& the_run();
// A fresh record: what a run before left is released.
void start_run();
