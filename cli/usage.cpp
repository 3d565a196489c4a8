#include <cstdio>

#include "cli/report.h"

static const char synopsis[] =
    "   krd <pmd file>\n\n"
    "   krd [-hltT]  [-e <symbol file>] [-m <symbol file>] [-g] [-p <stack pointer>] [-x <offset>]\n"
    "                [-C <demangle style>] [-s <filter>] [-z <zip file>]\n"
    "                [-b <load module ID>] [-o <outfile>] [-c] <pmd file>\n\n"
    "   krd info [-ht] [-o <outfile>] <pmd file>\n"
    "   krd error [-h] [-o <outfile>] <pmd file>\n\n";

void print_usage() {
    std::fputs("\nUsage :\n", stderr);
    std::fputs(synopsis, stderr);
    std::fputs("See 'krd -h' for more information\n\n", stderr);
}

void print_version(FILE* stream) {
    std::fprintf(stream, "KRD Product ID: %s Version: %s (SunOS)\n", KRD_PRODUCT_ID, KRD_VERSION);
}

void print_help(FILE* stream) {
    std::fputs("NAME\n"
               "   krd - List and display dump information files\n\n"
               "SYNOPSIS\n\n",
               stream);
    std::fputs(synopsis, stream);
    std::fputs(
        "DESCRIPTION\n\n"
        "   options:\n\n"
        "    -h                 Print this help information\n\n"
        "    -l                 List all sections in a dump information file\n\n"
        "    -t, -T             Used with '-l'. Display timestamp information for each section.\n"
        "                       -t is the time from writing the first section\n"
        "                       -T is the time relative the writing of the previous section.\n"
        "                       This is mainly used for debug of dump manager.\n\n"
        "    -e  <symbol file>  Get symbol information for the stack trace from the\n"
        "                       specified file.\n\n"
        "    -m  <symbol file>  Get symbol information for the stack trace from the specified file\n"
        "                       if the file contains product information or \n"
        "                       if the file follows naming convention which should be <Productname>_<revision>.elf\n"
        "                       *This option can be used multiple times to provide multiple Symbol files.\n\n"
        "    -C style           Decode (demangle) C++ symbols into user-level names. This function\n"
        "                       makes C++ symbols readable. Style can be a number 0,1 or 2\n"
        "                         0 - No demangling of symbols. This is the raw format found in\n"
        "                             the symbol table of the load module\n"
        "                         1 - C++ symbols demangled. This is the default setting.\n"
        "                             The function symbol return types are not printed.\n"
        "                         2 - C++ Symbols demangled. The functions symbol return types\n"
        "                             are printed\n\n"
        "    -p  <stack_pointer>   Use this stack pointer instead of trying to find one in the dump\n"
        "                          information file.\n\n"
        "    -g                    Try to guess the stackpointer.\n"
        "                          NOTE! This option is not implemented.\n"
        "    -x  <offset>          Use the offset <offset> when examining the symbol file\n"
        "    -s  <filter>          Display only those sections that matches the filter argument. The\n"
        "                          filter is case insensitive and can match part of the section name.\n\n"
        "    -z  <zip file>        Print symbolic signal information using signal symbol tables\n"
        "                          (elf format object files) found in the specified zip file.\n"
        "    -b  <load module ID>  Specify load module ID for the basic OS segment.\n"
        "                          Used in conjunction with option '-z' to print symbolic signal\n"
        "                          information for signals related to the basic OS.\n"
        "    -c                    Continue if an error was encountered when accessing the zip file\n"
        "                          contents. Used in conjunction with option '-z'.\n"
        "    -o  <outfile>         Output the information from the krd command to the specified file.\n\n"
        "   subcommands:\n\n"
        "    info     Same as 'krd -l'\n\n"
        "    error    Lists the section in the dump information file where the\n"
        "             general description of the cause of the restart is listed.\n\n"
        "    -n                 To print the process names , subroutine names and lines numbers for Nexus messages\n\n"
        "    -N/-nexus_files    To generate binary and hexadecimal files\n\n",
        stream);
}
