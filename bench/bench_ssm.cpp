// Signals printed through the report's path (load_sigsymb_file, ssmPrint)
// when they alternate between two archives, when they stay in one, and
// when every switch reads the archive anew (the caches dropped).
//   bench_ssm A.ZIP B.ZIP SIGNALS
// A.ZIP holds LQZ_A, B.ZIP holds LQZ_B and many small members; both
// describe signal 0x1fff as uint sig_no, then 60 more bytes.
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "signals/ssm.h"

static size_t printed;
static int count_char(int) {
    printed++;
    return 0;
}

int main(int argc, char** argv) {
    if (argc != 4) return 2;
    const int n = std::atoi(argv[3]);
    krd_options o;
    o.zip_files[0] = argv[1];
    o.zip_files[1] = argv[2];
    o.zip_count = 2;
    o.flags = KRD_OPT_ZIP;
    if (handle_sigsymb_file(nullptr, &o) != 0) return 1;
    std::vector<uint8_t> sig(64);
    sig[2] = 0x1f;
    sig[3] = 0xff;

    auto run = [&](const char* what, int count, bool alternate, bool drop) {
        const auto t0 = std::chrono::steady_clock::now();
        for (int i = 0; i < count; i++) {
            if (drop) ssmUnloadAll();
            krd_signal_record r;
            r.lmid = alternate && i % 2 ? "LQZ_B" : "LQZ_A";
            r.size = uint32_t(sig.size());
            r.data = sig.data();
            if (load_sigsymb_file(nullptr, &r, &o) != 0) std::exit(1);
            ssmPrint(r.lmid, sig.data(), r.size, count_char);
        }
        const double us = std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - t0).count() / count;
        std::printf("  %-34s %9.1f us per signal\n", what, us);
        return us;
    };
    run("warm-up", 10, true, false);
    const double one = run("all from one archive", n, false, false);
    const double alternating = run("alternating between two archives", n, true, false);
    const double anew = run("alternating, read anew each time", std::max(n / 20, 10), true, true);
    std::printf("  alternating / one archive: %.2f   read anew / alternating: %.1f\n", alternating / one,
                anew / alternating);
    return printed ? 0 : 1;
}
