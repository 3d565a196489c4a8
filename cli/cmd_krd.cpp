#include <getopt.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "cli/report.h"
#include "cli/report_output.h"
#include "support/text.h"
#include "symbols/calltrace.h"
#include "symbols/cross_tool.h"

int is_numeric_arg(const char* text) {
    const char* p = text;
    if (*p == '0') p++;
    int bad = 0;
    if (*p == 'x') {
        for (p++; *p; p++)
            if (!is_xdigit(*p)) bad++;
    } else {
        for (; *p; p++)
            if (!is_digit(*p)) bad++;
    }
    return bad == 0;
}

// An argument that is a prefix of the subcommand, compared over its own length.
static bool is_prefix_of(const char* arg, const char* word) {
    size_t n = std::strlen(arg);
    return n <= std::strlen(word) && std::strncmp(arg, word, n) == 0;
}

static int usage_failure() {
    print_usage();
    return 1;
}

static bool numeric_option(int letter, uint32_t* value) {
    if (!is_numeric_arg(optarg)) {
        std::fprintf(stderr, "krd: option '-%c' requires a numeric argument ['%s']\n", letter, optarg);
        return false;
    }
    *value = uint32_t(std::strtoul(optarg, nullptr, 0));
    return true;
}

// glibc's getopt stops at the first non-option while POSIXLY_CORRECT is set.
// Options may stand behind the dump's name whatever the environment, so the
// variable is out of sight while the parser runs, and back afterwards.
namespace {
struct gnu_argument_order {
    std::optional<std::string> saved;
    gnu_argument_order() {
        if (const char* v = std::getenv("POSIXLY_CORRECT")) {
            saved = v;
            unsetenv("POSIXLY_CORRECT");
        }
    }
    ~gnu_argument_order() {
        if (saved) setenv("POSIXLY_CORRECT", saved->c_str(), 1);
    }
};
}  // namespace

// Opens the dump, telling a failure as the command line does.
static std::unique_ptr<krd_file> open_dump(const char* name) {
    uint8_t error = 0;
    auto f = krd_open_file(0, name, &error);
    if (!f) {
        if (error == 1) std::fprintf(stderr, "error: file %s is not a PMD file\n", name);
        else std::fprintf(stderr, "error: cannot open file %s\n", name);
        print_usage();
    }
    return f;
}

// --help and --version as GNU tools have them: found wherever they stand as an
// option (not as an option's argument, nor behind "--"), before anything else.
enum { long_help = 256, long_version };
static const option long_requests[] = {
    {"help", no_argument, nullptr, long_help}, {"version", no_argument, nullptr, long_version}, {}};

static int find_long_request(int count, char** av, const char* letters) {
    std::vector<char*> copy(av, av + count);  // the parser permutes what it scans
    copy.push_back(nullptr);
    opterr = 0;
    optind = 0;
    int opt;
    while ((opt = getopt_long(count, copy.data(), letters, long_requests, nullptr)) != -1)
        if (opt == long_help || opt == long_version) return opt;
    return 0;
}

// The run behind cmd_krd; what it cannot write comes back in write_error.
static int run_krd(int argc, char** argv, int* write_error) {
    start_run();
    krd_run& run = the_run();
    krd_options& options = run.options;
    const char* letters = "hvltTgnce:m:C:p:x:s:o:z:b:N";
    const char* out_name = nullptr;

    // Our own copy of the vector: the parser permutes it, and -nexus_files is
    // taken out of it; the argument strings are never touched.
    std::vector<char*> args(argv, argv + argc);
    args.push_back(nullptr);
    size_t first = 0;
    int count = argc;

    if (count > 1 && args[1][0] != '-') {
        if (is_prefix_of(args[1], "info")) {
            options.flags |= KRD_OPT_LIST;
            letters = "hvtTo:";
            first = 1;
            count--;
        } else if (is_prefix_of(args[1], "error")) {
            options.flags |= KRD_OPT_ERROR;
            letters = "hv:o:";
            first = 1;
            count--;
        }
    }
    for (int i = 0; i < count; i++) {
        if (std::strcmp(args[first + size_t(i)], "-nexus_files") == 0) {
            run.nexus_files = 1;
            args.erase(args.begin() + long(first) + i);
            count--;
            break;
        }
    }
    char** av = args.data() + first;

    switch (find_long_request(count, av, letters)) {
    case long_help: print_help(stdout); return 0;
    case long_version: print_version(stdout); return 0;
    }

    opterr = 1;
    optind = 0;  // a full restart of the parser, also for a second run in one process
    int opt;
    std::optional<gnu_argument_order> permute(std::in_place);
    while ((opt = getopt(count, av, letters)) != -1) {
        switch (opt) {
        case 'h': print_help(); return 0;
        case 'v': print_version(); return 0;
        case 'l': options.flags |= KRD_OPT_LIST; break;
        case 't': options.flags |= KRD_OPT_TIME; break;
        case 'T': options.flags |= KRD_OPT_TIME | KRD_OPT_TIME_RELATIVE; break;
        case 'g': options.flags |= KRD_OPT_GUESS_SP; break;
        case 'n': options.flags |= KRD_OPT_NEXUS_NAMES; break;
        case 'c': options.flags |= KRD_OPT_CONTINUE; break;
        case 'e': options.symbol_file = optarg; break;
        case 'm':
            options.mapping_files[options.mapping_count++] = optarg;
            if (options.mapping_count >= KRD_MAX_FILES) {
                std::fprintf(stderr, "krd: Maximum number of Mapping ELF Symbol files is %d.\n", KRD_MAX_FILES);
                return usage_failure();
            }
            break;
        case 'C':
            if (!numeric_option('C', &options.demangle_style)) return usage_failure();
            if (options.demangle_style > 2) {
                std::fputs("krd: Demangle style can only be 0,1 or 2\n", stderr);
                return usage_failure();
            }
            break;
        case 'p':
            if (!numeric_option('p', &options.stack_pointer)) return usage_failure();
            break;
        case 'x':
            if (!numeric_option('x', &options.symbol_offset)) return usage_failure();
            break;
        case 's': options.section_filter = optarg; break;
        case 'o': out_name = optarg; break;
        case 'z':
            options.zip_files[options.zip_count++] = optarg;
            options.flags |= KRD_OPT_ZIP;
            options.zip_current = 0;
            if (options.zip_count >= KRD_MAX_FILES) {
                std::fprintf(stderr, "krd: Maximum number of zip files is %d.\n", KRD_MAX_FILES);
                return usage_failure();
            }
            break;
        case 'b':
            options.basic_lmid = optarg;
            options.flags |= KRD_OPT_BASIC_LMID;
            break;
        case 'N': run.nexus_files = 1; break;
        default: return usage_failure();
        }
    }
    permute.reset();
    if (count - optind != 1) {
        std::fputs("krd: Wrong number of arguments.\n", stderr);
        return usage_failure();
    }
    if ((options.flags & KRD_OPT_TIME) && !(options.flags & KRD_OPT_LIST)) {
        std::puts("krd: options '-t' or '-T' is only valid for option '-l' or subcommand 'info'");
        return 1;
    }

    run.dump_file_name = av[optind];
    auto dump = open_dump(run.dump_file_name);
    if (!dump) return 1;

    FILE* out = stdout;
    static report_output file_out;
    if (out_name) {
        FILE* file = std::fopen(out_name, "w");
        if (!file) {
            std::perror("fopen:");
            krd_close_file(&dump);
            return 1;
        }
        report_output_open(&file_out, file);
        out = file_out.stream;
    }

    if (options.flags & KRD_OPT_ZIP) {
        bool any_failed = false;
        for (int i = 0; i < options.zip_count; i++) {
            FILE* z = std::fopen(options.zip_files[i], "rb");
            if (!z) {
                std::fprintf(stderr, "krd: Cannot open zip file %s.\n", options.zip_files[i]);
                any_failed = true;
            } else {
                std::fclose(z);
            }
        }
        if (any_failed) return usage_failure();
        krd_chain plist = krd_find_section(dump.get(), nullptr, "PROCESS LIST");
        if (plist) {
            if (print_memory_block(out, dump.get(), plist.get(), &options, 1) == RUN_ENDED) {
                if (out_name) *write_error = report_output_close(&file_out);
                return 1;
            }
            krd_free_chain(plist);
        } else {
            std::fputs("Error: No PROCESS LIST section found.\n", stderr);
        }
        krd_close_file(&dump);
        dump = open_dump(run.dump_file_name);
        if (!dump) return 1;
    }

    options.sigsym_failed = 0;
    print_dump_header(out, dump.get());
    run_step step = print_dump_sections(out, dump.get(), &options);
    if (step == RUN_GO_ON && !(options.flags & (KRD_OPT_LIST | KRD_OPT_ERROR)) &&
        !(options.sigsym_failed == 1 && !(options.flags & KRD_OPT_CONTINUE))) {
        zdb_open_result symbols = print_calltrace(out, dump.get(), &options);
        if (!symbols.ok()) {
            print_symbol_file_failure(symbols);
            step = RUN_ENDED;
        }
    }
    krd_close_file(&dump);
    if (out_name) *write_error = report_output_close(&file_out);
    return step == RUN_ENDED ? 1 : 0;
}

int cmd_krd(int argc, char** argv) {
    krd_read_failed = end_run_on_read_failure;
    static report_output std_out;
    report_output_open(&std_out, stdout);
    int file_error = 0;
    int status = run_krd(argc, argv, &file_error);
    int stdout_error = report_output_close(&std_out);
    cross_tool_close_all();
    int error = file_error ? file_error : stdout_error;
    if (status != 0 || error == 0) return status;
    // A reader that closed the pipe (with SIGPIPE ignored) ends the run quietly.
    if (error != EPIPE) std::fprintf(stderr, "krd: error writing report: %s\n", std::strerror(error));
    return 1;
}
