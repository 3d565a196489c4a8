// The resident dump store. A workstation has none, so every operation
// answers "nothing there" and dumps are always read from files.
#include "pmd/krd_file.h"

uint32_t pmd_get_dump_id(uint32_t) { return 0; }
void* pmd_get_dump_info(uint32_t) { return nullptr; }
uint32_t pmd_read_dump(uint32_t, uint32_t, uint8_t*, uint32_t) { return 0; }
void* pmd_get_dumps() { return nullptr; }
