// Stand-ins until the archive manager lands: no signal is known.
#include "signals/ssm.h"

int handle_sigsymb_file(FILE*, krd_options*) { return 0; }
int load_sigsymb_file(FILE*, const krd_signal_record*, krd_options*) { return 1; }
int ssmUnloadAll() { return 0; }
int ssmPrint(const char*, const uint8_t*, uint32_t, ssm_putc_fn) { return -1; }
