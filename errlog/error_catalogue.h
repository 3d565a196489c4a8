// The catalogue of OSE errors: the system calls, one table of errors per
// component, and the table of tables that sorts an error code into a component.
#pragma once

#include <cstdint>

// One system call; its code is the call's number shifted left by 16, so that
// it compares with bits 16 to 23 of an error code. A code of 0 ends the table.
struct errOse_syscall {
    uint32_t code;
    const char* name;
};

// What the data of a record holds, by the error's row.
enum : uint32_t {
    LG_DETAIL_NONE = 0,        // not shown
    LG_DETAIL_EXTRA = 1,       // a 32-bit extra parameter
    LG_DETAIL_FRAME = 2,       // the 168-byte register frame
    LG_DETAIL_INFO = 4,        // shown by the general printer
    LG_DETAIL_WORD = 8,        // a 32-bit word, shown like the extra parameter
    LG_DETAIL_WORD_40 = 0x40,  // likewise
    LG_DETAIL_REGDUMP = 0x80,  // the exception register dump
    LG_DETAIL_HEAP = 0x100,    // heap buffer information
};

// One error of a component. A code of 0 ends a table; that end row has kind 0.
struct errOse_error {
    uint32_t code;
    const char* name;  // printed as it stands, blanks included
    const char* text;  // the description, lines split by line feeds
    uint32_t kind;
};

// A component's table: its name, the mask under which a code is compared with
// the rows' codes, and the rows up to and including the end row.
struct errOse_table {
    const char* name;
    uint32_t compare_mask;
    const errOse_error* rows;
};

// A row of the table of tables: an error code belongs to the component when
// the code & mask equals the key. The key 0xFFFFFFFF ends the table.
struct errOse_component {
    uint32_t key;
    uint32_t mask;
    const errOse_table* table;
    uint32_t reserved;
};

constexpr uint32_t ERROSE_END_KEY = 0xFFFFFFFF;

extern const errOse_syscall errOse_systemCalls[];
// Row 0 is the kernel and is not searched: kernel errors are known by the reporter.
extern const errOse_component errOse[];

extern const errOse_table errOse_kernel_err;
extern const errOse_table errOse_bsp_error;
extern const errOse_table errOse_efsCommon_error;
extern const errOse_table errOse_efsFlib_error;
extern const errOse_table errOse_efsSerdd_error;
extern const errOse_table errOse_efsShell_error;
extern const errOse_table errOse_efsStartEfs_error;
extern const errOse_table errOse_heap_error;
extern const errOse_table errOse_ntp_error;
extern const errOse_table errOse_ns_error;
extern const errOse_table errOse_ospf_error;
extern const errOse_table errOse_otl_error;
extern const errOse_table errOse_rtc_error;
extern const errOse_table errOse_sdm_error;
extern const errOse_table errOse_fm_error;
extern const errOse_table errOse_ragsock_error;
extern const errOse_table errOse_ramdump_error;
extern const errOse_table errOse_spliteth_error;
extern const errOse_table errOse_pm_error;
extern const errOse_table errOse_rtl_error;
extern const errOse_table errOse_dda_error;

// The name of the system call in bits 16 to 23 of the code, or null.
const char* lg_system_call(uint32_t error_code);

// The component of an error reported through the OSE error API: every row of
// errOse from row 1 whose key the code matches is a hit, on_hit sees each in
// order, and the last one holds. Null when there is none.
template <class OnHit>
const errOse_table* lg_find_component(uint32_t error_code, OnHit&& on_hit) {
    const errOse_table* found = nullptr;
    for (const errOse_component* row = &errOse[1]; row->key != ERROSE_END_KEY; row++) {
        if ((error_code & row->mask) == row->key) {
            found = row->table;
            on_hit(*row->table);
        }
    }
    return found;
}

// The first row of the table whose code equals the error code under the
// table's compare mask, or the end row (code 0, kind 0) when none does.
const errOse_error* lg_find_error(const errOse_table& table, uint32_t error_code);
