// The archive manager's result codes, its memory, and how the report's side
// of it (load_sigsymb_file) searches the archives; the report cases show the
// failures told and whether the report goes on.
#include <gtest/gtest.h>

#include "signals/ssm.h"
#include "signals/tests/sig_fixture.h"

namespace {

const SsmAllocators heap = {std::malloc, std::free};

// Members: one usable, one without tables, one whose table is of the
// other family, one empty, one whose table lies about its pool sizes.
const char* const members_a = R"(
member LQZ_A
fill 16 0
table a
signal A_SIG 0x100 {
    uint sig_no
    ushort value
}
member NO_TABLES
text "an object file without signal tables"
member OTHER_FAMILY
table c magic=1
signal C_SIG 1 {
    uint sig_no
}
member EMPTY
member LONG_NAME_THAT_IS_USED_FOR_NOTHING
fill 8 1
)";

const char* const members_b = R"(
member LQZ_B
table b order=little
signal B_SIG 0x200 {
    uint sig_no
    char tag[4]
}
member LQZ_A
table a2
signal A2_SIG 0x100 {
    uint sig_no
    uint x
}
)";

std::vector<uint8_t> be(uint32_t signo, std::vector<uint8_t> rest = {}) {
    // Built in place: g++ -O3 misreads an insert behind a four-byte list.
    rest.insert(rest.begin(), 4, 0);
    for (int i = 0; i < 4; i++) rest[size_t(i)] = uint8_t(signo >> (24 - 8 * i));
    return rest;
}

std::string print(const char* lmid, const std::vector<uint8_t>& signal) {
    sink.clear();
    ssmPrint(lmid, signal.data(), uint32_t(signal.size()), sink_put);
    return sink;
}

// An allocator that refuses blocks above a size.
size_t refuse_above = 0;
void* picky_alloc(size_t n) { return n > refuse_above ? nullptr : std::malloc(n); }
const SsmAllocators picky = {picky_alloc, std::free};

// An allocator that refuses the next blocks of member images.
int refuse_images = 0;
void* flaky_alloc(size_t n) {
    if (n >= 300 && refuse_images > 0) {
        refuse_images--;
        return nullptr;
    }
    return std::malloc(n);
}
const SsmAllocators flaky = {flaky_alloc, std::free};

// Grows the first entry's uncompressed size; a method, when given,
// replaces its compression method.
void patch_sizes(const std::string& zip, uint32_t grow, int method = -1) {
    std::fstream f(zip, std::ios::in | std::ios::out | std::ios::binary);
    std::vector<uint8_t> b((std::istreambuf_iterator<char>(f)), {});
    auto u32 = [&](size_t at) { return uint32_t(b[at] | b[at + 1] << 8 | b[at + 2] << 16 | uint32_t(b[at + 3]) << 24); };
    auto put = [&](size_t at, uint32_t v) {
        for (int i = 0; i < 4; i++) b[at + size_t(i)] = uint8_t(v >> (8 * i));
    };
    const size_t eocd = b.size() - 22;
    ASSERT_EQ(u32(eocd), 0x06054b50u);
    const size_t central = u32(eocd + 16);
    put(22, u32(22) + grow);
    put(central + 24, u32(central + 24) + grow);
    if (method >= 0) {
        b[8] = b[central + 10] = uint8_t(method);
        b[9] = b[central + 11] = 0;
    }
    f.seekp(0);
    f.write(reinterpret_cast<const char*>(b.data()), std::streamsize(b.size()));
}

TEST(SignalArchiveManager, ResultCodes) {
    scratch_dir dir;
    const std::string zip = dir.archive("a.zip", members_a);
    const auto sig = be(0x100, {0, 7, 0, 0});
    deleteSsmDataBase();

    EXPECT_EQ(ssmLoad("LQZ_A"), -1);
    EXPECT_EQ(ssmUnload("LQZ_A"), -1);
    EXPECT_EQ(ssmUnloadAll(), -1);
    EXPECT_EQ(ssmPrintSignalNames("LQZ_A", 0x100, sink_put), -1);
    EXPECT_EQ(ssmPrint("LQZ_A", sig.data(), 8, sink_put), -1);
    EXPECT_EQ(ssmInfo(), nullptr);
    sink.clear();
    EXPECT_EQ(ssmPrint("LQZ_A", sig.data(), 0, sink_put), -10);
    EXPECT_EQ(ssmPrint("LQZ_A", nullptr, 6, sink_put), -10);
    EXPECT_EQ(sink, "");
    // Without an id nothing is looked up: hex, whether or not selected.
    EXPECT_EQ(print(nullptr, sig), "00000000: 00000100 00070000" + std::string(21, ' ') + "\"........\"\n");

    dir.write("not.zip", {'P', 'K', 3, 4, 0});
    EXPECT_EQ(ssmSelectArchive((dir / "not.zip").c_str(), &heap), -2);
    EXPECT_EQ(ssmLoad("LQZ_A"), -1);
    EXPECT_EQ(ssmSelectArchive((dir / "none.zip").c_str(), &heap), -2);

    ASSERT_EQ(ssmSelectArchive(zip.c_str(), &heap), 0);
    EXPECT_EQ(ssmLoad("LQZ_X"), -4);
    EXPECT_EQ(ssmLoad(nullptr), -4);
    EXPECT_EQ(ssmLoad("lqz_a"), -4);  // names match exactly
    EXPECT_EQ(ssmUnload("LQZ_A"), 0);  // not loaded
    EXPECT_EQ(ssmPrintSignalNames("LQZ_A", 0x100, sink_put), 0);
    // A member that is not loaded prints hex.
    EXPECT_EQ(print("LQZ_A", sig).substr(0, 10), "00000000: ");
    EXPECT_EQ(ssmLoad("NO_TABLES"), -8);
    EXPECT_EQ(ssmLoad("EMPTY"), -8);
    EXPECT_EQ(ssmLoad("OTHER_FAMILY"), -5);
    EXPECT_EQ(ssmLoad("LQZ_A"), 0);
    EXPECT_EQ(ssmLoad("LQZ_A"), 0);
    EXPECT_EQ(print("LQZ_A", sig), "Signal A_SIG:\n\n00000000: sig_no = 0x100\n00000004: value = 0x7");
    sink.clear();
    EXPECT_EQ(ssmPrintSignalNames("LQZ_A", 0x100, sink_put), 1);
    EXPECT_EQ(sink, "A_SIG ");

    // The snapshot: the failed loads left nothing behind.
    auto info = ssmInfo();
    ASSERT_NE(info, nullptr);
    EXPECT_EQ(info[0].flag, 1);
    EXPECT_STREQ(info[0].text, zip.c_str());
    ASSERT_EQ(info[0].second, 5u);
    const char* names[] = {"LQZ_A", "NO_TABLES", "OTHER_FAMILY", "EMPTY", "LONG_NAME_THAT_IS_USED_FOR_NOTHING"};
    for (int i = 0; i < 5; i++) {
        EXPECT_STREQ(info[i + 1].text, names[i]);
        EXPECT_EQ(info[i + 1].flag, i == 0);
        EXPECT_EQ(info[i + 1].second, i == 0 ? 1u : 0u);
    }
    EXPECT_EQ(info[4].first, 0u);
    EXPECT_EQ(info[0].first, 5 * sizeof(SsmFile) + info[1].first + sizeof(uint32_t));

    EXPECT_EQ(ssmUnload("LQZ_A"), 0);
    EXPECT_EQ(ssmInfo()[0].first, 5 * sizeof(SsmFile));
    EXPECT_EQ(ssmUnload("LQZ_X"), -4);

    // Memory: the image is refused, then the records themselves.
    refuse_above = 5 * sizeof(SsmFile);
    ASSERT_EQ(ssmSelectArchive(zip.c_str(), &picky), 0);
    EXPECT_EQ(ssmLoad("LQZ_A"), -9);
    refuse_above = 0;
    EXPECT_EQ(ssmSelectArchive(zip.c_str(), &picky), -9);
    EXPECT_EQ(ssmLoad("LQZ_A"), -1);
    deleteSsmDataBase();
}

TEST(SignalArchiveManager, ArchivesThatLie) {
    scratch_dir dir;
    // A member that inflates to fewer bytes than the directory says.
    const std::string zip = dir.archive("short.zip", members_b);
    patch_sizes(zip, 10);
    ASSERT_EQ(ssmSelectArchive(zip.c_str(), &heap), 0);
    EXPECT_EQ(ssmLoad("LQZ_B"), -3);
    EXPECT_EQ(ssmLoad("LQZ_A"), 0);

    // A member that cannot be opened (a method nobody inflates) is an
    // access problem, even where its size is more than it could inflate to.
    const std::string lzma = dir.archive("lzma.zip", members_b);
    patch_sizes(lzma, 1u << 26, 14);
    ASSERT_EQ(ssmSelectArchive(lzma.c_str(), &heap), 0);
    EXPECT_EQ(ssmLoad("LQZ_B"), -2);
    EXPECT_EQ(ssmInfo()[0].first, 2 * sizeof(SsmFile));
    deleteSsmDataBase();
}

// A member loaded again after a switch comes from what the run kept: the
// snapshot, the print and the memory count are those of its first load.
TEST(SignalArchiveManager, LoadsAgainAsTheFirstTime) {
    scratch_dir dir;
    const std::string a = dir.archive("a.zip", members_a);
    const std::string b = dir.archive("b.zip", members_b);
    auto snapshot = [] {
        auto info = ssmInfo();
        std::string rows;
        for (uint32_t i = 0; info && i <= info[0].second; i++)
            rows += std::to_string(info[i].flag) + " " + info[i].text + " " + std::to_string(info[i].first) + " " +
                    std::to_string(info[i].second) + "\n";
        return rows;
    };
    const auto sig = be(0x100, {0, 7, 0, 0});
    ssmUnloadAll();  // nothing kept from other tests
    ASSERT_EQ(ssmSelectArchive(a.c_str(), &heap), 0);
    ASSERT_EQ(ssmLoad("LQZ_A"), 0);
    EXPECT_EQ(ssmLoad("NO_TABLES"), -8);
    const std::string first = snapshot(), printed = print("LQZ_A", sig);
    for (int round = 0; round < 2; round++) {
        ASSERT_EQ(ssmSelectArchive(b.c_str(), &heap), 0);
        ASSERT_EQ(ssmLoad("LQZ_A"), 0);
        ASSERT_EQ(ssmSelectArchive(a.c_str(), &heap), 0);
        ASSERT_EQ(ssmLoad("LQZ_A"), 0);
        EXPECT_EQ(ssmLoad("NO_TABLES"), -8);
        EXPECT_EQ(snapshot(), first);
        EXPECT_EQ(print("LQZ_A", sig), printed);
        // After everything was given back it is read anew, to the same effect.
        if (round == 0) ssmUnloadAll();
    }
    EXPECT_EQ(ssmUnload("LQZ_A"), 0);
    EXPECT_EQ(ssmInfo()[0].first, 5 * sizeof(SsmFile));
    deleteSsmDataBase();
}

struct report_options {
    krd_options o;
    report_options(std::initializer_list<const char*> zips, uint32_t flags = 0) {
        for (const char* z : zips) o.zip_files[o.zip_count++] = z;
        o.flags = KRD_OPT_ZIP | flags;
    }
};

int load(krd_options* o, const char* lmid, uint32_t size = 8) {
    krd_signal_record r;
    r.lmid = lmid;
    r.size = size;
    return load_sigsymb_file(nullptr, &r, o);
}

TEST(SignalArchiveManager, FindsMembersAcrossArchives) {
    scratch_dir dir;
    const std::string a = dir.archive("a.zip", members_a);
    const std::string b = dir.archive("b.zip", members_b);
    report_options opt({a.c_str(), b.c_str()});
    krd_options* o = &opt.o;
    testing::internal::CaptureStderr();
    {
        EXPECT_EQ(handle_sigsymb_file(nullptr, o), 0);
        // Found only in the second archive, which then stays selected.
        EXPECT_EQ(load(o, "LQZ_B"), 0);
        EXPECT_EQ(o->zip_current, 1);
        // A name in both is served by the selected archive first.
        EXPECT_EQ(load(o, "LQZ_A"), 0);
        EXPECT_EQ(print("LQZ_A", be(0x100, {0, 0, 0, 1})), "Signal A2_SIG:\n\n00000000: sig_no = 0x100\n00000004: x = 0x1");
        // In no archive: all are tried in silence, the last stays selected.
        o->zip_current = 0;
        ssmSelectArchive(a.c_str(), &heap);
        EXPECT_EQ(load(o, "NOWHERE"), -4);
        EXPECT_EQ(o->zip_current, 1);
        EXPECT_EQ(o->sigsym_failed, 0u);
        // A load that succeeds on the retry after memory ran out does not
        // end the search: the other archives are tried, the last decides.
        ASSERT_EQ(ssmSelectArchive(a.c_str(), &flaky), 0);
        o->zip_current = 0;
        refuse_images = 1;
        EXPECT_EQ(load(o, "LQZ_A"), 0);
        EXPECT_EQ(o->zip_current, 1);
        EXPECT_EQ(print("LQZ_A", be(0x100, {0, 0, 0, 1})), "Signal A2_SIG:\n\n00000000: sig_no = 0x100\n00000004: x = 0x1");
        ASSERT_EQ(ssmSelectArchive(b.c_str(), &flaky), 0);
        refuse_images = 1;
        EXPECT_EQ(load(o, "LQZ_B"), -4);
        EXPECT_EQ(o->zip_current, 0);
        // Nothing to do.
        EXPECT_EQ(load(o, nullptr), 1);
        EXPECT_EQ(load(o, "LQZ_B", 0), 1);
        o->flags &= ~KRD_OPT_ZIP;
        EXPECT_EQ(load(o, "LQZ_B"), 1);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    deleteSsmDataBase();
}

}  // namespace
