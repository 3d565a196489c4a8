// One T&E entry: time stamp, message, source position, trace group and the
// binary data of bus traffic.
#include <algorithm>
#include <cstring>
#include <ctime>
#include <string_view>

#include "errlog/te_log.h"
#include "errlog/trace_image.h"
#include "render/dump_printers.h"
#include "support/text.h"

namespace {

struct te_group {
    uint32_t number;
    const char* name;
};

// Searched from the top; the last row is the end mark and stands for every
// number that is not in the table.
constexpr te_group te_groups[] = {
    {0, "CHECK"},         {1, "ERROR"},         {2, "ENTER"},         {3, "RETURN"},
    {4, "INFO"},          {5, "TRACE1"},        {6, "TRACE2"},        {7, "TRACE3"},
    {8, "TRACE4"},        {9, "TRACE5"},        {10, "TRACE6"},       {11, "TRACE7"},
    {12, "TRACE8"},       {13, "TRACE9"},       {14, "STATE_CHANGE"}, {15, "BUS_SEND"},
    {16, "BUS_RECEIVE"},  {17, "REC_SIG"},      {18, "SEND_SIG"},     {19, "PARAM"},
    {20, "INTERFACE"},    {21, "TRACE_OBJ"},    {22, "RESERVED1"},    {23, "RESERVED2"},
    {24, "RESERVED3"},    {25, "RESERVED4"},    {26, "RESERVED5"},    {27, "RESERVED6"},
    {28, "USER1"},        {29, "USER2"},        {30, "USER3"},        {31, "USER4"},
    {255, "UNKNOWN"},
};

// Field offsets of an entry, from the block's data.
constexpr uint32_t TE_SECONDS = 0, TE_BASE_TICKS = 4, TE_LINE = 8, TE_FILE_POS = 10, TE_MSG_POS = 12,
                   TE_SUFFIX_POS = 14, TE_BIN_POS = 16, TE_BIN_LEN = 18, TE_GROUP = 20, TE_TEXT_AREA = 24;

// The entry's text area: from behind its head to the end of the data the
// block was asked for, cut by the image's end.
std::span<const uint8_t> entry_text_area(std::span<const uint8_t> img, uint64_t data, uint16_t size) {
    const uint64_t from = data + TE_TEXT_AREA, to = std::min<uint64_t>(data + size, img.size());
    if (from >= to) return {};
    return img.subspan(size_t(from), size_t(to - from));
}

char char_at(std::string_view s, size_t i) { return i < s.size() ? s[i] : '\0'; }

// The leading integer of the timer text, as "%d" reads it; a text without
// one gives 0, so that each entry shows the time of its reference point.
uint32_t timer_multiplier(const char* text) {
    const char* p = text;
    while (is_space(*p)) p++;
    bool negative = false;
    if (*p == '+' || *p == '-') negative = *p++ == '-';
    uint32_t value = 0;
    for (; is_digit(*p); p++) value = value * 10 + uint32_t(*p - '0');
    return negative ? 0u - value : value;
}

int print_view(FILE* stream, std::string_view s) {
    return std::fprintf(stream, "%.*s", int(s.size() > INT32_MAX ? INT32_MAX : s.size()), s.data());
}

}  // namespace

const char* te_group_name(uint32_t group) {
    const te_group* g = te_groups;
    while (g->number != group && g->number != 255) g++;
    return g->name;
}

void te_print_entry(FILE* stream, const trace_cursor& cursor, const char* timer_text) {
    std::span<const uint8_t> img = cursor.image;
    const uint64_t data = cursor.data;
    const uint32_t seconds = img_u32(img, data + TE_SECONDS);
    const uint32_t base_ticks = img_u32(img, data + TE_BASE_TICKS);
    const uint16_t line = img_u16(img, data + TE_LINE);
    const uint16_t file_pos = img_u16(img, data + TE_FILE_POS);
    const uint16_t msg_pos = img_u16(img, data + TE_MSG_POS);
    const uint16_t suffix_pos = img_u16(img, data + TE_SUFFIX_POS);
    const uint16_t bin_pos = img_u16(img, data + TE_BIN_POS);
    const uint16_t bin_len = img_u16(img, data + TE_BIN_LEN);
    const uint32_t group = img_u32(img, data + TE_GROUP);
    const uint64_t text_area = data + TE_TEXT_AREA;

    // Milliseconds since the reference point, in 32 bits as on the target;
    // a tick count below the base has wrapped.
    const uint32_t multiplier = timer_multiplier(timer_text);
    const uint32_t ticks = cursor.ticks;
    const uint32_t elapsed =
        ticks >= base_ticks ? (ticks - base_ticks) * multiplier : (ticks + (0xFFFFFFFFu - base_ticks)) * multiplier;
    const int32_t when = int32_t(seconds + elapsed / 1000);
    const time_t t = when;
    struct tm tm {};
    gmtime_r(&t, &tm);
    std::fprintf(stream, " [%4d-%02d-%02d %02d:%02d:%02d.%03d] ", tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday,
                 tm.tm_hour, tm.tm_min, tm.tm_sec, int(elapsed % 1000));

    // A message may begin with a two-digit number, optionally marked with an
    // asterisk, or with an asterisk alone; these go in brackets in front.
    const std::span<const uint8_t> texts = entry_text_area(img, data, cursor.size);
    const std::string_view m = string_at(texts, msg_pos);
    size_t skip = 0;
    if (is_digit(char_at(m, 0)) && is_digit(char_at(m, 1)) && char_at(m, 2) == ' ') {
        std::fprintf(stream, "[%c%c", m[0], m[1]);
        skip = 3;
        if (char_at(m, 3) == '*' && char_at(m, 4) == ' ') {
            std::fprintf(stream, "\\%c", '*');
            skip += 2;
        }
        std::fputc(']', stream);
    } else if (char_at(m, 0) == '*' && char_at(m, 1) == ' ') {
        std::fprintf(stream, "[%c", '*');
        std::fputc(']', stream);
        skip = 2;
    }

    const char* group_name = te_group_name(group);
    print_view(stream, m.substr(skip));
    std::fputc(' ', stream);
    print_view(stream, string_at(texts, file_pos));
    std::fprintf(stream, ":%d %s:", int(line), group_name);
    print_view(stream, string_at(texts, suffix_pos));
    std::fputc('\n', stream);

    if (bin_pos != 0 && bin_len != 0) {
        std::fprintf(stream, "   s->binDataPos         = %08x\n", unsigned(bin_pos));
        std::fprintf(stream, "   s->binDataLen         = %08x\n", unsigned(bin_len));
        std::fputc('\n', stream);
        if (std::strncmp(group_name, "BUS", 3) == 0) {
            // The offsets are not checked against the block; the image bounds them.
            const uint64_t from = text_area + bin_pos;
            std::span<const uint8_t> bin;
            if (from < img.size()) bin = img.subspan(size_t(from), std::min<size_t>(bin_len, img.size() - size_t(from)));
            print_hex_dump(stream, bin, bin_pos);
            std::fputc('\n', stream);
        }
    }
}
