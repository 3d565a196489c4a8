// The signal symbol manager on minizip.
//
// Selecting an archive reads its directory only; a member is inflated the
// first time a signal needs it. A dump whose signals alternate between
// archives switches the selection back and forth, and every switch
// discards the loaded members. So that this does not cost a directory read
// and an inflation per signal, the run keeps each archive's directory
// listing, and the outcome of each member load: the result, and for a
// usable member its image as the reformatting left it. Reformatting is
// deterministic, so a load from what was kept gives the same results,
// messages and report as reading the member anew. A reformatted image is
// only read, so a later load lends the kept one to the member instead of
// copying it. The member still takes its block, untouched, so that memory
// runs out and is counted exactly as with a fresh read.
#include "signals/ssm.h"

#include <sys/stat.h>
#include <minizip/unzip.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <new>
#include <unordered_map>
#include <vector>

#include "run/krd_run.h"
#include "signals/sig_print.h"
#include "signals/sig_table.h"

static const struct {
    int code;
    const char* text;
} ssm_result_texts[] = {
    {-10, "The signal and signalSize args are illegal."},
    {-9, "The required memory can not be allocated."},
    {-8, "No signal tables exists in the signal symbol file."},
    {-7, ""},
    {-6, "Not all signal symbol file names are unique in the zip archive."},
    {-5, "Corrupt format in a signal table."},
    {-4, "File does not exist in the archive."},
    {-3, "Not all bytes can be read in the signal symbol file."},
    {-2, "Problems accessing the zip archive."},
    {-1, "No zip archive has been selected."},
    {0, "The signal symbol file could be loaded into memory and its signal tables added to the data base."},
};

const char* ssmResultText(int code) {
    if (code < -10 || code > 0) return "";
    return ssm_result_texts[code + 10].text;
}

static void ssmReleaseFiles(SsmDataBase& d);

// The run's data base (the_run().db), given back with the run.
static SsmDataBase& db() {
    return the_run().db.get([](SsmDataBase* d) {
        ssmReleaseFiles(*d);
        delete d;
    });
}

// ---- What the run keeps across selections ----

struct ssm_entry {
    std::string name;
    uint32_t size;        // uncompressed, as the directory states it
    uint32_t size_bound;  // the most the entry can inflate to
    unsigned long dir_offset;
    unsigned long dir_index;
};
struct ssm_listing {
    int result = 0;                  // 0, or -6 when names repeat
    std::vector<ssm_entry> entries;  // the first entry of each name, in directory order
    std::unordered_map<std::string_view, uint32_t> index;
};
// The outcome of loading a member: -5, -8, or 0 with the usable image and
// what the lookups of its tables work out.
struct ssm_outcome {
    int result;
    std::vector<uint8_t> image;
    std::vector<uint32_t> tables;
    std::vector<sig_lookup> lookups;
};
struct ssm_kept {
    std::map<std::string, std::shared_ptr<const ssm_listing>> listing_cache;
    std::map<std::string, ssm_outcome> outcome_cache;  // archive path, NUL, member name
};
// The run's (the_run().ssm_archives).
static ssm_kept& run_ssm_kept() { return the_run().ssm_archives.get(); }

static std::string member_key(const std::string& path, std::string_view name) {
    std::string key = path;
    key.push_back('\0');
    key += name;
    return key;
}

// ---- Records ----

static void resetSsmDataBase(SsmDataBase& d) {
    d.selected = 0;
    d.archive_path.clear();
    d.memory_used = 0;
    d.file_count = 0;
    d.first_file = d.last_file = d.files = nullptr;
    d.listing.reset();
}

static SsmFile* ssmFindFile(const char* lmid) {
    if (!lmid || !db().files) return nullptr;
    auto it = db().listing->index.find(lmid);
    return it == db().listing->index.end() ? nullptr : &db().files[it->second];
}

// One record per distinct name, in directory order, allocated together.
static bool ssmCreateFiles() {
    const std::vector<ssm_entry>& entries = db().listing->entries;
    if (entries.empty()) return true;
    void* block = db().alloc.alloc(entries.size() * sizeof(SsmFile));
    if (!block) return false;
    db().files = new (block) SsmFile[entries.size()];
    db().memory_used += uint32_t(entries.size() * sizeof(SsmFile));
    for (size_t i = 0; i < entries.size(); i++) {
        SsmFile* f = &db().files[i];
        f->name = entries[i].name;
        f->image_size = entries[i].size;
        f->entry = &entries[i];
        if (db().last_file) db().last_file->next = f;
        else db().first_file = f;
        db().last_file = f;
        db().file_count++;
    }
    return true;
}

static void ssmFreeFile(SsmDataBase& d, SsmFile* f) {
    if (f->block) d.alloc.release(f->block);
    f->image = f->block = nullptr;
    d.memory_used -= f->image_size;
    f->loaded = 0;
}

static void ssmFreeTableList(SsmDataBase& d, SsmFile* f) {
    if (f->tables) {
        d.alloc.release(f->tables);
        d.memory_used -= f->table_count * uint32_t(sizeof(uint32_t));
    }
    f->tables = nullptr;
    f->lookups = nullptr;
    f->table_count = 0;
}

static void ssmUnloadFile(SsmDataBase& d, SsmFile* f) {
    if (!f->loaded) return;
    ssmFreeFile(d, f);
    ssmFreeTableList(d, f);
}

// Every member's memory and the records' block.
static void ssmReleaseFiles(SsmDataBase& d) {
    for (SsmFile* f = d.first_file; f; f = f->next) ssmUnloadFile(d, f);
    if (d.files) d.alloc.release(d.files);
}

void deleteSsmDataBase() {
    ssmReleaseFiles(db());
    resetSsmDataBase(db());
}

// ---- Selecting an archive ----

// The archive's directory: every entry's name, size and place.
static int ssmReadDirectory(const char* path, ssm_listing* out) {
    unzFile zip = unzOpen(path);
    if (!zip) return SSM_ARCHIVE_ERROR;
    if (unzGoToFirstFile(zip) != UNZ_OK) {
        unzClose(zip);
        return SSM_ARCHIVE_ERROR;
    }
    struct stat st;
    const uint64_t archive_size = stat(path, &st) == 0 ? uint64_t(st.st_size) : 0;
    // A zip entry's name has at most 65535 bytes.
    std::vector<char> name(65536 + 1);
    std::unordered_map<std::string, bool> seen;
    for (;;) {
        unz_file_info info;
        unz_file_pos pos;
        if (unzGetCurrentFileInfo(zip, &info, name.data(), uLong(name.size()), nullptr, 0, nullptr, 0) != UNZ_OK ||
            unzGetFilePos(zip, &pos) != UNZ_OK) {
            unzClose(zip);
            return SSM_ARCHIVE_ERROR;
        }
        // Deflate makes at most 1032 bytes of one; a stored entry is as it is.
        const uint64_t packed = std::min<uint64_t>(info.compressed_size, archive_size);
        const uint64_t bound = info.compression_method == 0 ? packed : packed * 1032 + 4096;
        ssm_entry entry{std::string(name.data()), uint32_t(info.uncompressed_size),
                        uint32_t(std::min<uint64_t>(bound, UINT32_MAX)), pos.pos_in_zip_directory,
                        pos.num_of_file};
        if (seen.emplace(entry.name, true).second) out->entries.push_back(std::move(entry));
        else out->result = SSM_DUPLICATE_NAMES;
        const int next = unzGoToNextFile(zip);
        if (next == UNZ_END_OF_LIST_OF_FILE) break;
        if (next != UNZ_OK) {
            unzClose(zip);
            return SSM_ARCHIVE_ERROR;
        }
    }
    unzClose(zip);
    for (uint32_t i = 0; i < out->entries.size(); i++) out->index.emplace(out->entries[i].name, i);
    return SSM_OK;
}

int ssmSelectArchive(const char* path, const SsmAllocators* allocators) {
    if (db().alloc.release) deleteSsmDataBase();
    db().alloc = *allocators;
    resetSsmDataBase(db());
    if (!path) return SSM_ARCHIVE_ERROR;
    db().archive_path = path;

    auto& listing_cache = run_ssm_kept().listing_cache;
    auto cached = listing_cache.find(db().archive_path);
    if (cached == listing_cache.end()) {
        auto listing = std::make_shared<ssm_listing>();
        if (int r = ssmReadDirectory(path, listing.get()); r != SSM_OK) return r;
        cached = listing_cache.emplace(db().archive_path, std::move(listing)).first;
    }
    db().listing = cached->second;
    if (!ssmCreateFiles()) {
        db().listing.reset();
        return SSM_NO_MEMORY;
    }
    db().selected = 1;
    return db().listing->result;
}

// ---- Loading a member ----

static uint8_t* ssmAllocImage(SsmFile* f) {
    f->image = f->block = static_cast<uint8_t*>(db().alloc.alloc(std::max<size_t>(f->image_size, 1)));
    if (f->block) db().memory_used += f->image_size;
    return f->block;
}

// The member's bytes from the archive, into f->image.
static int ssmReadFile(SsmFile* f) {
    unzFile zip = unzOpen(db().archive_path.c_str());
    if (!zip) return SSM_ARCHIVE_ERROR;
    unz_file_pos pos{f->entry->dir_offset, f->entry->dir_index};
    if (unzGoToFilePos(zip, &pos) != UNZ_OK) {
        unzClose(zip);
        return SSM_ARCHIVE_ERROR;
    }
    // A size the entry cannot inflate to would never be read whole: no
    // block is taken for it, and once the entry opens, it is a short read.
    const bool can_fill = f->image_size <= f->entry->size_bound;
    if (can_fill) {
        if (!ssmAllocImage(f)) {
            unzClose(zip);
            return SSM_NO_MEMORY;
        }
        std::memset(f->image, 0, std::max<size_t>(f->image_size, 1));
    }
    if (unzOpenCurrentFile(zip) != UNZ_OK) {
        unzClose(zip);
        if (can_fill) ssmFreeFile(db(), f);
        return SSM_ARCHIVE_ERROR;
    }
    if (!can_fill) {
        unzCloseCurrentFile(zip);
        unzClose(zip);
        return SSM_SHORT_READ;
    }
    uint32_t got = 0;
    while (got < f->image_size) {
        const int n = unzReadCurrentFile(zip, f->image + got, std::min<uint32_t>(f->image_size - got, 1u << 30));
        if (n <= 0) break;
        got += uint32_t(n);
    }
    unzCloseCurrentFile(zip);
    unzClose(zip);
    if (got < f->image_size) {
        ssmFreeFile(db(), f);
        return SSM_SHORT_READ;
    }
    f->loaded = 1;
    return SSM_OK;
}

static const std::string_view table_mark = SIGDB_MAGIC_TEXT;

int ssmFindText(std::string_view pattern, const uint8_t* start, size_t length, size_t* found) {
    if (pattern.size() > length) return 1;
    size_t i = 0;
    while (i + pattern.size() <= length) {
        const void* c = std::memchr(start + i, pattern[0], length - pattern.size() + 1 - i);
        if (!c) return 2;
        const size_t candidate = size_t(static_cast<const uint8_t*>(c) - start);
        size_t k = 1;
        while (k < pattern.size() && start[candidate + k] == uint8_t(pattern[k])) k++;
        if (k == pattern.size()) {
            *found = candidate;
            return 0;
        }
        i = candidate + k + 1;
    }
    return 2;
}

// A table's text stands 44 bytes into its header; the next search begins
// behind the whole text field.
std::vector<uint32_t> ssmFindTables(const uint8_t* image, uint32_t size) {
    std::vector<uint32_t> tables;
    size_t at = 0, hit = 0;
    while (at < size && ssmFindText(table_mark, image + at, size - at, &hit) == 0) {
        tables.push_back(uint32_t(at + hit) - SYM_TEXT);
        at += hit + SYM_TEXT_SIZE;
    }
    return tables;
}

// The table list of a loaded member.
static int ssmCreateTableList(SsmFile* f, const std::vector<uint32_t>& found) {
    f->table_count = uint32_t(found.size());
    const uint32_t list_size = f->table_count * uint32_t(sizeof(uint32_t));
    f->tables = static_cast<uint32_t*>(db().alloc.alloc(list_size));
    if (!f->tables) return SSM_NO_MEMORY;
    db().memory_used += list_size;
    std::copy(found.begin(), found.end(), f->tables);
    return SSM_OK;
}

// Reads the member and makes its tables usable.
static int ssmLoadFromArchive(SsmFile* f) {
    if (int r = ssmReadFile(f); r != SSM_OK) return r;
    const std::vector<uint32_t> found = ssmFindTables(f->image, f->image_size);
    f->table_count = uint32_t(found.size());
    if (found.empty()) return SSM_NO_TABLES;
    if (int r = ssmCreateTableList(f, found); r != SSM_OK) return r;
    const std::span<uint8_t> image(f->image, f->image_size);
    for (uint32_t t = 0; t < f->table_count; t++)
        if (reformat_magic_table({image, f->tables[t]}, 0, 0, f->image_size - 1) != 0) return SSM_CORRUPT_TABLE;
    return SSM_OK;
}

// The member as it was made usable before in this run, its image lent.
static int ssmLoadKept(SsmFile* f, ssm_outcome& kept) {
    if (kept.result != SSM_OK) return kept.result;
    if (!ssmAllocImage(f)) return SSM_NO_MEMORY;
    f->image = kept.image.data();
    f->loaded = 1;
    return ssmCreateTableList(f, kept.tables);
}

int ssmLoad(const char* lmid) {
    if (!db().selected) return SSM_NOT_SELECTED;
    SsmFile* f = ssmFindFile(lmid);
    if (!f) return SSM_NO_SUCH_FILE;
    if (f->loaded) return SSM_OK;
    const std::string key = member_key(db().archive_path, f->name);
    auto& outcome_cache = run_ssm_kept().outcome_cache;
    auto kept = outcome_cache.find(key);
    const int r = kept != outcome_cache.end() ? ssmLoadKept(f, kept->second) : ssmLoadFromArchive(f);
    // What depends on the member alone is kept; memory and access failures are not.
    if (kept == outcome_cache.end() && (r == SSM_OK || r == SSM_CORRUPT_TABLE || r == SSM_NO_TABLES)) {
        ssm_outcome outcome{r, {}, {}, {}};
        if (r == SSM_OK) {
            outcome.image.assign(f->image, f->image + f->image_size);
            outcome.tables.assign(f->tables, f->tables + f->table_count);
            for (uint32_t at : outcome.tables) outcome.lookups.push_back(sigdb_lookup_of({outcome.image, at}));
        }
        kept = outcome_cache.emplace(key, std::move(outcome)).first;
    }
    if (r != SSM_OK) ssmUnloadFile(db(), f);
    else if (kept != outcome_cache.end()) f->lookups = kept->second.lookups.data();
    return r;
}

int ssmUnload(const char* lmid) {
    if (!db().selected) return SSM_NOT_SELECTED;
    SsmFile* f = ssmFindFile(lmid);
    if (!f) return SSM_NO_SUCH_FILE;
    ssmUnloadFile(db(), f);
    return SSM_OK;
}

// Also gives back what the run kept to read again: this is called when
// memory ran out, and at the end of the report. The members go first, as
// they may have borrowed kept images.
int ssmUnloadAll() {
    if (db().selected)
        for (SsmFile* f = db().first_file; f; f = f->next) ssmUnloadFile(db(), f);
    run_ssm_kept().outcome_cache.clear();
    run_ssm_kept().listing_cache.clear();
    return db().selected ? SSM_OK : SSM_NOT_SELECTED;
}

static sig_table file_table(const SsmFile* f, uint32_t t) {
    return {{f->image, f->image_size}, f->tables[t], f->lookups ? &f->lookups[t] : nullptr};
}

int ssmPrint(const char* lmid, const uint8_t* signal, uint32_t size, ssm_putc_fn put_char) {
    if (!signal || size == 0) return SSM_BAD_SIGNAL;
    if (lmid) {
        if (!db().selected) return SSM_NOT_SELECTED;
        const SsmFile* f = ssmFindFile(lmid);
        if (f && f->loaded)
            for (uint32_t t = 0; t < f->table_count; t++)
                if (ssm_print_signal(file_table(f, t), signal, size, 0, put_char, nullptr, nullptr, 0) == 0)
                    return SSM_OK;
    }
    ssm_print_hex_dump(signal, size, 0, put_char);
    return SSM_OK;
}

int ssmPrintSignalNames(const char* lmid, uint32_t signo, ssm_putc_fn put_char) {
    if (!db().selected) return SSM_NOT_SELECTED;
    const SsmFile* f = ssmFindFile(lmid);
    if (!f) return SSM_NO_SUCH_FILE;
    int names = 0;
    if (f->loaded)
        for (uint32_t t = 0; t < f->table_count; t++) names += ssm_print_signal_name(file_table(f, t), signo, put_char);
    return names;
}

static void info_text(char* out, std::string_view text) {
    const size_t n = std::min<size_t>(text.size(), 255);
    std::memcpy(out, text.data(), n);
    out[n] = '\0';
}

std::unique_ptr<SsmInfoRow[]> ssmInfo() {
    if (!db().selected) return nullptr;
    std::unique_ptr<SsmInfoRow[]> rows(new (std::nothrow) SsmInfoRow[db().file_count + 1]());
    if (!rows) return nullptr;
    rows[0].flag = db().selected;
    info_text(rows[0].text, db().archive_path);
    rows[0].first = db().memory_used;
    rows[0].second = db().file_count;
    size_t i = 1;
    for (const SsmFile* f = db().first_file; f; f = f->next, i++) {
        rows[i].flag = f->loaded;
        info_text(rows[i].text, f->name);
        rows[i].first = f->image_size;
        rows[i].second = f->table_count;
    }
    return rows;
}

// ---- The report's side: which archive, and whether to go on ----

static const SsmAllocators heap_allocators = {std::malloc, std::free};

static void print_ssm_error(int code) { std::fprintf(stderr, "Error: %s\n", ssmResultText(code)); }

// A failure of the selection itself, told twice.
static bool selection_failure(int code) {
    return code == SSM_ARCHIVE_ERROR || code == SSM_DUPLICATE_NAMES || code == SSM_NO_MEMORY;
}

// A failure of a member that is there but cannot be used.
static bool load_failure(int code) {
    return code == SSM_ARCHIVE_ERROR || code == SSM_SHORT_READ || code == SSM_CORRUPT_TABLE ||
           code == SSM_NO_TABLES || code == SSM_NO_MEMORY;
}

// Tells a failure, twice for one of the selection; true when it ends the
// search, which without -c also ends the report.
static bool told_and_stopped(int code, bool twice, krd_options* options) {
    print_ssm_error(code);
    if (twice) print_ssm_error(code);
    if (options->flags & KRD_OPT_CONTINUE) return false;
    options->sigsym_failed = 1;
    return true;
}

int handle_sigsymb_file(FILE*, krd_options* options) {
    const int r = ssmSelectArchive(options->zip_files[0], &heap_allocators);
    if (r == SSM_OK) return 0;
    if (!selection_failure(r)) {
        print_ssm_error(r);
        return 0;
    }
    if (!told_and_stopped(r, true, options)) return 0;
    free_process_list();
    return -1;
}

int load_sigsymb_file(FILE*, const krd_signal_record* record, krd_options* options) {
    if (!(options->flags & KRD_OPT_ZIP) || !record->lmid || record->size == 0) return 1;
    const char* lmid = record->lmid;
    int r = ssmLoad(lmid);
    if (r == SSM_OK) return 0;
    // A load that succeeds only on the retry does not end the search: the
    // other archives are still tried, and the last result is returned.
    if (r == SSM_NO_MEMORY) {
        ssmUnloadAll();
        r = ssmLoad(lmid);
    }
    if (load_failure(r) && told_and_stopped(r, false, options)) return r;
    // The selected archive first, then the others in the order given.
    const int skip = options->zip_current;
    for (int i = 0; i < options->zip_count; i++) {
        if (i == skip) continue;
        const int s = ssmSelectArchive(options->zip_files[i], &heap_allocators);
        if (s != SSM_OK && selection_failure(s) && told_and_stopped(s, true, options)) return s;
        if (s != SSM_OK && !selection_failure(s)) print_ssm_error(s);
        options->zip_current = i;
        r = ssmLoad(lmid);
        if (r == SSM_OK) return 0;
        if (load_failure(r) && told_and_stopped(r, false, options)) return r;
    }
    return r;
}
