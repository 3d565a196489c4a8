// The report's streams (standard output, the -o file) written through a sink
// that remembers the first write that failed, so that the run can say so once
// at its end instead of finishing with status 0 on a full disk.
#pragma once

#include <cstdio>

struct report_output {
    FILE* stream = nullptr;  // what the report writes to
    FILE* target = nullptr;  // the stream whose file descriptor receives the bytes
    int error = 0;           // errno of the first failed write, 0 while all went well
};

// Puts a sink in front of `target`, to which nothing may have been written
// yet. For standard output the sink also takes the place of `stdout`, so
// that what is printed to it by name keeps its place in the report. If no
// sink can be made, `stream` is `target` itself.
void report_output_open(report_output* out, FILE* target);
// Flushes and closes the sink, gives `stdout` back, and closes any other
// target. Returns 0, or the errno of the first write or close that failed.
int report_output_close(report_output* out);
