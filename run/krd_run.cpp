#include "run/krd_run.h"

krd_run& the_run() {
    static krd_run run;
    return run;
}

void start_run() { the_run() = krd_run{}; }
