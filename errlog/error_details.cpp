// The decoders of an error record's data.
#include "errlog/error_details.h"

#include <string>

#include "errlog/error_record.h"

static bool is_text_char(uint8_t b) { return b >= 32 && b <= 127; }

void lg_hexdump(FILE* stream, lg_cursor cursor, uint32_t length, uint32_t width) {
    if (width == 0) width = 1;
    if (width > 16) width = 16;
    char hex[16 * 3 + 1];
    char chars[16 + 1];
    for (uint32_t offset = 0; length > 0; offset += 8) {
        uint32_t n = length < width ? length : width;
        std::fprintf(stream, "       0x%04X: ", unsigned(offset & 0xFFFF));
        for (uint32_t i = 0; i < n; i++) {
            uint8_t b = lg_getU8(cursor);
            std::snprintf(hex + 3 * i, 4, "%02X ", b);
            chars[i] = is_text_char(b) ? char(b) : '.';
        }
        hex[3 * n] = '\0';
        chars[n] = '\0';
        std::fprintf(stream, "%-*s   \"%s\"\n", int(width * 3), hex, chars);
        length -= n;
    }
}

// A text of at most 80 bytes, ending at its NUL.
static std::string fixed_text(lg_cursor& cursor) {
    std::string s;
    bool ended = false;
    for (int i = 0; i < 80; i++) {
        uint8_t b = lg_getU8(cursor);
        if (b == 0) ended = true;
        if (!ended) s.push_back(char(b));
    }
    return s;
}

static const char watchdog_overload_text[] =
    "\n       This error occurs when a processor overload situation on a realtime\n"
    "       priority is detected.\n"
    "       There may be a need to lower the priority of one or more\n"
    "       application processes.\n"
    "       The error was reported by the watchdog supervisor process, but the\n"
    "       problem was actually caused by another process.\n"
    "       It is sometimes difficult to find that process, but one plausible\n"
    "       candidate is the process that was running when the watchdog supervisor\n"
    "       detected the situation.\n"
    "       That process is presented as an 'Involved Process' in the PMD.\n"
    "       The processor load history as well as the OSE system trace\n"
    "       can also provide useful information.\n"
    "\n"
    "       It is illegal to execute continuosly at or above :\n"
    "              OSE priority 21  for more than  60 sec or\n"
    "              OSE priority 31  for more than  30 min.\n\n";

static const char cold_start_text[] =
    "\n\n       This error suggests a fatal software crash or\n"
    "       possibly a hardware problem.\n"
    "       A cold start was encountered as a result of this situation.\n"
    "\n"
    "       Software overload situations are normally indicated\n"
    "       by the software watchdog, but in this case the software\n"
    "       watchdog was unable to execute for several seconds.\n"
    "\n"
    "       The reason for this may be that an infinite loop was\n"
    "       entered in an interrupt process, or an infinite loop\n"
    "       was entered on OSE priority 0, or the OSE kernel itself\n"
    "       was damaged as a result of a serious bug somewhere.\n\n";

void lg_print_error_info(FILE* stream, uint32_t length) {
    const lg_record_fields& r = lg_record;
    if (length == 0) return;
    uint32_t n = r.data_len < length ? r.data_len : length;

    if (r.reporter == 1 && r.error_code == LG_ASSERTION_ERROR) {
        lg_cursor c = r.data;
        uint32_t line = lg_getU32(c);
        std::string file = fixed_text(c);
        std::string assertion = fixed_text(c);
        std::fprintf(stream, "       file:line      :  %s:%d\n", file.c_str(), int(int32_t(line)));
        std::fprintf(stream, "\n       Failed assertion `%s'\n", assertion.c_str());
        return;
    }

    std::fputs("\n       Error Information:       \n", stream);
    bool text = true;
    lg_cursor c = r.data;
    for (uint32_t i = 0; i < n && text; i++) {
        uint8_t b = lg_getU8(c);
        text = is_text_char(b) || b == 9 || b == 10 || b == 13 || (b == 0 && i == n - 1);
    }
    if (!text) {
        lg_hexdump(stream, r.data, r.data_len, 8);
    } else {
        std::string out = "       ";
        c = r.data;
        for (uint32_t i = 0; i < r.data_len; i++) {
            char b = char(lg_getU8(c));
            if (b == '\n') out += "\n       ";
            else out.push_back(b);
        }
        out.push_back('\n');
        std::fwrite(out.data(), 1, out.size(), stream);
    }
    if (r.error_code == LG_WATCHDOG_OVERLOAD) std::fputs(watchdog_overload_text, stream);
    if (r.error_code == LG_COLD_START_ERROR) std::fputs(cold_start_text, stream);
}

// r0 to r31, running down four columns.
static void print_gprs(FILE* stream, const uint32_t* r) {
    for (int i = 0; i < 8; i++)
        std::fprintf(stream, "       r%-2d :  %08lX   r%-2d :  %08lX   r%-2d :  %08lX   r%-2d :  %08lX\n", i,
                     (unsigned long)r[i], i + 8, (unsigned long)r[i + 8], i + 16, (unsigned long)r[i + 16], i + 24,
                     (unsigned long)r[i + 24]);
}

void lg_print_exception(FILE* stream, lg_cursor cursor) {
    unsigned type = (lg_record.error_code & 0xFF00) >> 8;
    switch (type) {
    case 2: std::fputs("\n       [0x02] : Machine check exception\n", stream); break;
    case 3: std::fputs("\n       [0x03] : Data access exception\n", stream); break;
    case 4: std::fputs("\n       [0x04] : Instruction access exception\n", stream); break;
    case 5: std::fputs("\n       [0x05] : Alignment exception\n", stream); break;
    default: std::fprintf(stream, "\n       [0x%02x] : Unknown type of exception\n", type); break;
    }
    std::fputs("\n       CPU Register Dump:\n", stream);
    // old sp, old lr, r0..r31, ctr, xer, cr, lr, srr0, srr1, dar, vec
    uint32_t w[42];
    for (uint32_t& v : w) v = lg_getU32(cursor);
    std::fprintf(stream, "       oldSP: %08lX   oldLR: %08lX\n\n", (unsigned long)w[0], (unsigned long)w[1]);
    print_gprs(stream, w + 2);
    std::fprintf(stream, "\n       ctr :  %08lX   xer :  %08lX   cr  :  %08lX   lr  :  %08lX\n",
                 (unsigned long)w[34], (unsigned long)w[35], (unsigned long)w[36], (unsigned long)w[37]);
    std::fprintf(stream, "       srr0:  %08lX   srr1:  %08lX   dar :  %08lX   vec :  %08lX\n",
                 (unsigned long)w[38], (unsigned long)w[39], (unsigned long)w[40], (unsigned long)w[41]);
}

struct exception_vector {
    uint32_t vector;
    const char* text;
};

static const exception_vector exception_vectors[] = {
    {0x100, "\n       [0x0100]: Critical Interrupt Pin\n"},
    {0x200, "\n       [0x0200]: Machine check\n"},
    {0x300, "\n       [0x0300]: Data Storage Exception\n"},
    {0x400, "\n       [0x0400]: Instruction Storage Expection\n"},
    {0x500, "\n       [0x0500]: External Interrupt\n"},
    {0x600, "\n       [0x0600]: Alignment Exception\n"},
    {0x700, "\n       [0x0700]: Program Exception\n"},
    {0xC00, "\n       [0x0C00]: System Call Exception\n"},
    {0x1000, "\n       [0x1000]: Programmable Interval Timer\n"},
    {0x1010, "\n       [0x1010]: Fixed Interval Timer\n"},
    {0x1020, "\n       [0x1020]: Watchdog Timer\n"},
    {0x1100, "\n       [0x1100]: Data TLB miss\n"},
    {0x1200, "\n       [0x1200]: Instruction TLB miss\n"},
    {0x2000, "\n       [0x2000]: Debug Exception\n"},
};

void lg_print_regdump(FILE* stream, lg_cursor cursor) {
    uint32_t vector = (lg_record.error_code & 0x7FFF0000) >> 16;
    for (const exception_vector& v : exception_vectors)
        if (v.vector == vector) std::fputs(v.text, stream);

    // Word offsets: pc 0, sp 1, sr 2, vec 3, fault flag 4, fault address 5,
    // marker 6, r0..r31 11..42, cr 43, xer 44, lr 45, ctr 46.
    uint32_t w[LG_REGDUMP_SIZE / 4];
    for (uint32_t& v : w) v = lg_getU32(cursor);
    std::fputs("\n       CPU Register Dump:\n", stream);
    if (w[6] != LG_REGDUMP_MARKER) {
        std::fputs("Dump corrupt.\n", stream);
        return;
    }
    std::fprintf(stream, "\n       pc  :  %08lX   sp  :  %08lX   sr  :  %08lX   vec :  %08lX\n\n",
                 (unsigned long)w[0], (unsigned long)w[1], (unsigned long)w[2], (unsigned long)w[3]);
    if (w[4] != 0) std::fprintf(stream, "       Faulting address of data exceptions: %08lX\n\n", (unsigned long)w[5]);
    print_gprs(stream, w + 11);
    std::fprintf(stream, "\n       cr  :  %08lX   xer :  %08lX   lr  :  %08lX   ctr :  %08lX\n",
                 (unsigned long)w[43], (unsigned long)w[44], (unsigned long)w[45], (unsigned long)w[46]);
}

void lg_print_heap_info(FILE* stream, lg_cursor cursor) {
    const lg_record_fields& r = lg_record;
    uint32_t left = r.data_len;
    if (r.data_len == 4 || lg_getU32(cursor) == LG_NO_HEAP_INFO) {
        std::fputs("\n       No heap buffer information exists.\n", stream);
        return;
    }
    left -= 4;
    if (int32_t(left) <= 48) {
        std::fputs("\n       Corrupt data. Dumping rest of heap information:\n", stream);
        lg_hexdump(stream, r.data, r.data_len, 8);
        return;
    }
    lg_getU32(cursor);
    uint32_t fragment = lg_getU32(cursor);
    uint32_t path = lg_getU32(cursor);
    uint32_t depth = lg_getU32(cursor);
    uint32_t buffer = lg_getU32(cursor);
    uint32_t owner = lg_getU32(cursor);
    uint32_t file_offset = lg_getU32(cursor);
    uint32_t line = lg_getU32(cursor);
    uint32_t requested = lg_getU32(cursor);
    uint32_t actual = lg_getU32(cursor);
    lg_getU32(cursor);
    lg_getU32(cursor);
    uint8_t endmark = lg_getU8(cursor);
    left -= 49;

    std::fputs("\n       HEAP Buffer information:\n\n", stream);
    std::fputs("       (NOTE!) The data below is information about the \n", stream);
    std::fputs("       owner of the heap buffer. It does not necessarily\n", stream);
    std::fputs("       mean that this is the one who caused the error.\n\n", stream);
    if (owner != 0) std::fprintf(stream, "       Owner process identity    : 0x%08lx\n", (unsigned long)owner);

    if (file_offset == LG_NO_FILE_OFFSET) {
        // No file name and so no line: one byte stands in the name's place.
        lg_getU8(cursor);
        if (left != 0) left--;
    } else {
        for (uint32_t i = 0; i < file_offset && left > 0; i++) {
            lg_getU8(cursor);
            left--;
        }
        // The name lies beyond the data, also at offset 0 with nothing left.
        if (left == 0) return;
        std::string name;
        while (left > 0) {
            uint8_t b = lg_getU8(cursor);
            left--;
            if (b == 0) break;
            name.push_back(char(b));
        }
        std::fprintf(stream, "       Owner file name           : %s", name.c_str());
        std::fprintf(stream, "\n       Source code line          : %ld\n", long(int32_t(line)));
    }

    if (fragment != 0) std::fprintf(stream, "       Address of heap fragment  : 0x%08lx\n", (unsigned long)fragment);
    if (path != 0)
        std::fprintf(stream, "       Path in tree of buffer    : 0x%08lx\n       Depth in tree of buffer   : 0x%08lx\n",
                     (unsigned long)path, (unsigned long)depth);
    if (buffer != 0) std::fprintf(stream, "       Address of buffer         : 0x%08lx\n", (unsigned long)buffer);
    if (requested != 0) std::fprintf(stream, "       Requested size of buffer  : 0x%08lx\n", (unsigned long)requested);
    if (actual != 0) std::fprintf(stream, "       Actual size of buffer     : 0x%08lx\n", (unsigned long)actual);
    if (endmark != 0) std::fputs("\n       Buffer endmark is not overwritten.\n", stream);
    else std::fputs("\n       Buffer endmark is overwritten.\n", stream);
    if (left != 0) {
        std::fputs("\n       User samples from the buffer:\n", stream);
        lg_hexdump(stream, cursor, left, 8);
    }
}

static const char soft_watchdog_text[] =
    "\n       Soft watchdog error detected:\n"
    "       This  error occurs  when a  processor overload  situation  on a\n"
    "       realtime  priority  is  detected. Overload is detected when \n"
    "       processes at a given prioritory or above have executed continuosly\n"
    "       a specified amount of time:\n"
    "              OSE priority 21  for more than  60 sec or\n"
    "              OSE priority 31  for more than  30 min.\n\n";

static const char background_advice_text[] =
    "       It  is common  practice to  place applications  that  can cause\n"
    "       continuous  execution on the  background level.  Such processes\n"
    "       should be created as OSE background processes.\n\n";

// One row of the load report: its label and the next n bytes.
static void print_load_row(FILE* stream, std::string line, lg_cursor& cursor, uint32_t n) {
    char cell[8];
    for (uint32_t i = 0; i < n; i++) {
        std::snprintf(cell, sizeof cell, "%3d ", lg_getU8(cursor));
        line += cell;
    }
    std::fprintf(stream, "%s\n", line.c_str());
}

void lg_print_load_report(FILE* stream) {
    const lg_record_fields& r = lg_record;
    std::fputs(soft_watchdog_text, stream);
    std::fputs(background_advice_text, stream);
    lg_cursor c = r.data;
    uint32_t n = lg_getU8(c);
    // Some targets add a 35th row, which is not shown.
    if (r.data_len != n * 34 + 5 && r.data_len != n * 35 + 5) {
        std::fputs("       Load report data corrupt\n", stream);
        lg_print_error_info(stream, r.data_len);
        return;
    }
    uint32_t interval = lg_getU32(c);
    char head[64];
    std::snprintf(head, sizeof head, "\n       Integration interval: %ld usec\n\n", long(int32_t(interval)));
    print_load_row(stream, std::string(head) + "       Int:  ", c, n);
    for (int p = 0; p < 32; p++) {
        char label[32];
        std::snprintf(label, sizeof label, "       P%02d:  ", p);
        print_load_row(stream, label, c, n);
    }
    print_load_row(stream, "       Bg :  ", c, n);
}
