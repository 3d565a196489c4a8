// Load modules linked at a fixed address on the boards we serve: they run
// where they were linked and are never rebased. A module id that no row knows
// is rebased from its code start.
#include <cstring>

#include "symbols/load_module.h"

namespace {

constexpr lm_builtin_row builtin_rows[] = {
    // id            path                    file name             target    ranges
    {"LQZ1000001", "/load/basic_os_lm", "basic_os.ppc", "ppc", false, 0, 0, 0, 0},
    {"LQZ1000002", "/load/boot_patch_lm", "boot_patch.pba750", "pba750", true, 0xFA0000, 51840, 0xF90000, 0},
    {"LQZ1000003", "/load/backup_lm", "backup.ppc750", "ppc750", false, 0, 0, 0, 0},
};

constexpr size_t id_length = 10;

}  // namespace

std::span<const lm_builtin_row> lm_builtin_table() { return builtin_rows; }

void lm_apply_builtin(lm_list* list) {
    for (load_module& lm : *list) {
        // A "Basic:" record is named after its version line and stays rebased.
        if (lm.name.empty()) {
            lm.name = lm.product + "_" + lm.revision;
            if (lm.name.size() > LM_NAME_MAX) lm.name.resize(LM_NAME_MAX);
            continue;
        }
        for (const lm_builtin_row& row : builtin_rows) {
            if (std::strncmp(lm.name.c_str(), row.id, id_length) != 0) continue;
            lm.path = row.path;
            lm.file_name = row.file_name;
            lm.target = row.target;
            lm.absolute = 1;
            if (row.has_ranges) {
                lm.code_start = row.code_start;
                lm.code_size = row.code_size;
                lm.data_start = row.data_start;
                lm.data_size = row.data_size;
            }
            break;
        }
    }
}
