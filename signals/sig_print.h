// Printing a signal by its table: the value printers that the walk calls
// and the drivers that open and close a signal's text. Two styles: ssm
// (the report's: one line per value, offsets in front) and ose (one line
// per signal). All output leaves through put_char.
#pragma once

#include <cstdint>
#include <span>

#include "signals/sig_table.h"

// Returns 0 when the table knows the signal, else 1 (after a hex dump of
// it when hex_on_failure). Null separators stand for ":\n\n" and "\n".
int ssm_print_signal(sig_table table, const uint8_t* signal, uint32_t size, int compress, ssm_putc_fn put_char,
                     const char* first_separator, const char* separator, int hex_on_failure);
// The same on one line; null separators stand for " : " and ", ".
int ose_print_signal(sig_table table, const uint8_t* signal, uint32_t size, int compress, ssm_putc_fn put_char,
                     const char* first_separator, const char* separator, int hex_on_failure);
int printsig(sig_table table, const uint8_t* signal, uint32_t size, int compress, ssm_putc_fn put_char,
             const char* first_separator, const char* separator);

// Sixteen bytes a line, offsets counted from offset.
void ssm_print_hex_dump(const uint8_t* data, uint32_t size, uint32_t offset, ssm_putc_fn put_char);
// "NAME " for every signal of this number; returns how many.
int ssm_print_signal_name(sig_table table, uint32_t signo, ssm_putc_fn put_char);

void ssm_print_field(const sig_value& value, SsmPrintContext* context);
void ose_print_field(const sig_value& value, SsmPrintContext* context);

void ssmPutString(const char* text, ssm_putc_fn put_char);
void ose_put_string(const char* text, ssm_putc_fn put_char);
