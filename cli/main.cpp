#include "cli/report.h"

int main(int argc, char** argv) { return cmd_krd(argc, argv); }
