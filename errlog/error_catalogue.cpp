// Lookups in the catalogue of OSE errors.
#include "errlog/error_catalogue.h"

const char* lg_system_call(uint32_t error_code) {
    for (const errOse_syscall* row = errOse_systemCalls; row->code != 0; row++)
        if (row->code == (error_code & 0xFF0000)) return row->name;
    return nullptr;
}

const errOse_error* lg_find_error(const errOse_table& table, uint32_t error_code) {
    const errOse_error* row = table.rows;
    while (row->code != 0 && ((error_code ^ row->code) & table.compare_mask) != 0) row++;
    return row;
}
