// The signal symbol manager: zip archives of signal symbol files, their
// members loaded on demand, and the printing of a signal by its table.
//
// One archive is selected at a time. Its members are named exactly like
// the load modules whose signals they describe; a member is read and its
// tables made usable on first use.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "run/krd_options.h"
#include "signals/signals.h"

// Result codes of the manager; ssmResultText gives their words.
inline constexpr int SSM_OK = 0;
inline constexpr int SSM_NOT_SELECTED = -1;
inline constexpr int SSM_ARCHIVE_ERROR = -2;
inline constexpr int SSM_SHORT_READ = -3;
inline constexpr int SSM_NO_SUCH_FILE = -4;
inline constexpr int SSM_CORRUPT_TABLE = -5;
inline constexpr int SSM_DUPLICATE_NAMES = -6;
inline constexpr int SSM_NO_TABLES = -8;
inline constexpr int SSM_NO_MEMORY = -9;
inline constexpr int SSM_BAD_SIGNAL = -10;

const char* ssmResultText(int code);

// Every block of the data base comes from this pair.
struct SsmAllocators {
    void* (*alloc)(size_t size);
    void (*release)(void* block);
};

struct ssm_entry;
struct ssm_listing;
struct sig_lookup;

// One archive member.
struct SsmFile {
    SsmFile* next = nullptr;
    int32_t loaded = 0;
    std::string_view name;  // as the archive's directory gives it
    uint8_t* image = nullptr;
    uint32_t image_size = 0;  // as the zip directory states it
    // The block taken for the image from the allocators: the image itself,
    // unless the run's kept image is lent (ssm.cpp).
    uint8_t* block = nullptr;
    uint32_t table_count = 0;
    uint32_t* tables = nullptr;  // header positions in the image
    const sig_lookup* lookups = nullptr;  // one per table, while loaded
    const ssm_entry* entry = nullptr;  // where it stands in the directory
};

struct SsmDataBase {
    int32_t selected = 0;
    std::string archive_path;
    uint32_t memory_used = 0;
    uint32_t file_count = 0;
    SsmFile* last_file = nullptr;
    SsmFile* first_file = nullptr;
    SsmAllocators alloc = {nullptr, nullptr};
    // The records, in one block, and the directory listing they name.
    SsmFile* files = nullptr;
    std::shared_ptr<const ssm_listing> listing;
};

int ssmSelectArchive(const char* path, const SsmAllocators* allocators);
void deleteSsmDataBase();
int ssmLoad(const char* lmid);
int ssmUnload(const char* lmid);
// ssmUnloadAll is declared in signals.h.
int ssmPrintSignalNames(const char* lmid, uint32_t signo, ssm_putc_fn put_char);

// The search for a table's text in a member image: 0 and the hit's
// position, 1 when the pattern is longer than the range, 2 without a hit.
// A candidate that fails at pattern position k resumes the scan k + 1
// bytes behind its start.
int ssmFindText(std::string_view pattern, const uint8_t* start, size_t length, size_t* found);

// The header positions of the signal tables in a member image, found by
// their text. A text in the image's first 44 bytes gives a position below
// the image, which wraps and fails the range test of reformat_magic_table.
std::vector<uint32_t> ssmFindTables(const uint8_t* image, uint32_t size);

// A snapshot of the data base: a head row (selected, archive path, memory
// used, file count), then one row per member (loaded, name, image size,
// table count). Texts are cut to 255 characters.
struct SsmInfoRow {
    int32_t flag;
    char text[256];
    uint32_t first;
    uint32_t second;
};
std::unique_ptr<SsmInfoRow[]> ssmInfo();

// Finds, across the -z archives, the member for record->lmid and loads it.
// 0 loaded, 1 nothing to do, otherwise a negative result code.
int load_sigsymb_file(FILE* stream, const krd_signal_record* record, krd_options* options);
