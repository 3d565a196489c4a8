// The pid table: which load module each process of the process list belongs
// to, so that a signal's sender or addressee names an archive member.
#include <algorithm>
#include <cstring>
#include <new>
#include <unordered_map>

#include "run/krd_run.h"
#include "signals/sig_text.h"
#include "signals/text_scan.h"

pid_table& run_pid_table() { return the_run().pid_lm_rows.get(); }

static constexpr uint32_t pid_lm_step = 1024;

static bool is_true_lmid(const std::string& id) { return id.compare(0, 3, "LQZ") == 0; }

void free_process_list() {
    pid_table& t = run_pid_table();
    if (t.pid_lm_capacity == 0) return;
    t = pid_table{};
}

int find_LMID(uint32_t pid, krd_signal_record* record) {
    const pid_table& t = run_pid_table();
    auto it = t.first_row_of_pid.find(pid);
    if (it == t.first_row_of_pid.end()) {
        record->lmid = nullptr;
        return 0;
    }
    record->lmid = t.rows[it->second].lmid.c_str();
    return 1;
}

static bool grow_rows(pid_table& t) {
    try {
        t.rows.resize(size_t(t.pid_lm_capacity) + pid_lm_step);
    } catch (const std::bad_alloc&) {
        return false;
    }
    t.pid_lm_capacity += pid_lm_step;
    return true;
}

static void count_row(pid_table& t) {
    uint32_t i = t.pid_lm_count++;
    const pid_lm_row& row = t.rows[i];
    t.first_row_of_pid.emplace(row.pid, i);
    segment_rows& seg = t.rows_of_segment[row.segment_id];
    if (is_true_lmid(row.lmid)) seg.last_true_id = std::max<int64_t>(seg.last_true_id, i);
    else seg.without_true_id.push_back(i);
}

// A BLOCK line prepares the row of the next process. A true id also goes to
// every earlier row of its segment that has none.
static void prepare_block_row(pid_table& t, uint32_t segment_id, const std::string& name) {
    pid_lm_row& row = t.rows[t.pid_lm_count];
    row.segment_id = segment_id;
    row.pid = 0;
    segment_rows& seg = t.rows_of_segment[segment_id];
    if (is_true_lmid(name)) {
        row.lmid = name;
        for (uint32_t i : seg.without_true_id) {
            t.rows[i].lmid = name;
            seg.last_true_id = std::max<int64_t>(seg.last_true_id, i);
        }
        seg.without_true_id.clear();
    } else if (seg.last_true_id >= 0) {
        row.lmid = t.rows[size_t(seg.last_true_id)].lmid;
    } else {
        row.lmid = name;
    }
}

void get_process_list(std::span<const uint8_t> image, krd_options* options) {
    free_process_list();
    pid_table& t = run_pid_table();
    if (!grow_rows(t)) {
        std::fputs("Error: Unable to allocate memory for symbolic signal information!\n", stderr);
        return;
    }
    const char* p = reinterpret_cast<const char*>(image.data());
    const char* end = p + image.size();
    uint32_t segment_id = 0;
    std::string block_name;
    bool block_fresh = false;
    char word[256];
    while (p < end) {
        if (t.pid_lm_count == t.pid_lm_capacity && !grow_rows(t)) return;
        const char* open = text_find(p, end, "\"");
        const char* close = open ? text_find(open + 1, end, "\"") : nullptr;
        if (!close) return;
        // Names have room for 255 characters; the length wraps as a byte.
        std::string name(open + 1, size_t(close - open - 1) % 256);
        p = close + 1;
        while (p < end && (*p == ' ' || *p == '\\' || *p == '\r' || *p == '\n')) p++;
        if (text_scanf(p, end, "%255s", word) != 1) return;
        if (std::strcmp(word, "BLOCK") == 0) {
            uint32_t segment = 0;
            if (text_scanf(p, end, "%*s%*s%x", &segment) != 1) {
                std::fprintf(stderr, "Warning: corrupt BLOCK entry \"%s\" in PROCESS LIST.\n", name.c_str());
            } else {
                segment_id = segment;
                if ((options->flags & KRD_OPT_BASIC_LMID) && segment_id == 0)
                    name = options->basic_lmid ? options->basic_lmid : "";
                prepare_block_row(t, segment_id, name);
                block_name = name;
                block_fresh = true;
            }
        } else {
            uint32_t pid = 0;
            if (text_scanf(p, end, "%*s%*s%*s%*s%*x%*x%*s%*s%*s%*s%*d%*d%x", &pid) != 1) {
                std::fprintf(stderr, "Warning: corrupt entry \"%s\" in PROCESS LIST.\n", name.c_str());
            } else {
                pid_lm_row& row = t.rows[t.pid_lm_count];
                row.pid = pid;
                if (!block_fresh) {
                    row.segment_id = segment_id;
                    row.lmid = block_name;
                }
                count_row(t);
                block_fresh = false;
            }
        }
        const char* line_end = text_find(p, end, "\n");
        if (!line_end) return;
        p = line_end + 1;
    }
}
