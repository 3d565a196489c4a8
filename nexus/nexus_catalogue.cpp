// The message and field tables, with their lookups.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "nexus/nexus_messages.h"

const nexus_message_row nexus_messages[NEXUS_MESSAGE_ROWS] = {
    {"2", "OTM", "5", {"TCODE", "SRC", "PID_INDX", "PROCESS_ID", "TSTAMP"}},
    {"8", "ERM", "5", {"TCODE", "SRC", "ETYPE", "ECODE", "TSTAMP"}},
    {"9", "PTSM", "6", {"TCODE", "SRC", "DCONT", "I-CNT", "PC", "TSTAMP"}},
    {"13", "DT-DWMS", "6", {"TCODE", "SRC", "DSZ", "F-ADDR", "DATA", "TSTAMP"}},
    {"15", "WPM", "4", {"TCODE", "SRC", "WPHIT", "TSTAMP"}},
    {"27", "PTRF", "5", {"TCODE", "SRC", "RCODE", "RDATA", "TSTAMP"}},
    {"28", "PTBM", "7", {"TCODE", "SRC", "BTYPE", "I-CNT", "U-ADDR", "HIST", "TSTAMP"}},
    {"29", "PTBS", "7", {"TCODE", "SRC", "BTYPE", "I-CNT", "F-ADDR", "HIST", "TSTAMP"}},
    {"33", "PTCM", "6", {"TCODE", "SRC", "EVCODE", "I-CNT", "CDATA", "TSTAMP"}},
    {"34", "DPQM", "4", {"TCODE", "SRC", "DATA", "TSTAMP"}},
    {"35", "DPFM", "4", {"TCODE", "SRC", "DATA", "TSTAMP"}},
};

// Down the columns of the width table, column after column.
const nexus_width_row nexus_field_length[NEXUS_WIDTH_ROWS] = {
    {"TCODE", "6"},   {"SRC", "6"},        {"PID", "26"},     {"WPHIT", "16"},     {"EVCODE", "4"},
    {"DTMAP", "1"},   {"DSZ", "4"},        {"ECODE", "8"},    {"F-ADDR", "13"},    {"FADDR", "VAR"},
    {"RCODE", "4"},

    {"RDATA", "30"},  {"RTYPE", "1"},      {"BTYPE", "2"},    {"I-CNT", "8"},      {"HIST", "30"},
    {"DCONT", "1"},   {"TTYPE", "2"},      {"NWORDS", "16"},  {"LADDR", "17"},     {"CADDR", "VAR"},
    {"BFN", "12"},    {"BFN_HC", "18"},

    {"PAD_1", "1"},   {"PAD_2", "2"},      {"TSTAMP", "VAR"}, {"DATA", "VAR"},     {"U-ADDR", "VAR"},
    {"PROCESS_ID", "VAR"}, {"PID_INDX", "4"}, {"ETYPE", "4"}, {"PC", "VAR"},       {"CDATA", "30"},
};

namespace {

struct role_row {
    const char* name;
    nexus_role role;
};
constexpr role_row roles[] = {
    {"TSTAMP", nexus_role::tstamp}, {"PROCESS_ID", nexus_role::process_id}, {"PID_INDX", nexus_role::pid_indx},
    {"PC", nexus_role::pc},         {"U-ADDR", nexus_role::u_addr},         {"I-CNT", nexus_role::i_cnt},
    {"F-ADDR", nexus_role::f_addr},
};

// The numbers behind the message table's texts, and each row's widths and
// roles, are worked out once: every message of a trace asks for them.
struct message_numbers {
    uint32_t tcode[NEXUS_MESSAGE_ROWS];
    uint8_t field_count[NEXUS_MESSAGE_ROWS];
    int32_t bits[NEXUS_MESSAGE_ROWS][7];
    nexus_role role[NEXUS_MESSAGE_ROWS][7];
};

message_numbers read_numbers() {
    message_numbers m{};
    for (int r = 0; r < NEXUS_MESSAGE_ROWS; r++) {
        m.tcode[r] = uint32_t(std::strtoul(nexus_messages[r].tcode, nullptr, 10));
        m.field_count[r] = uint8_t(std::strtoul(nexus_messages[r].field_count, nullptr, 10));
        for (int i = 0; i < m.field_count[r] && i < 7; i++) {
            m.bits[r][i] = get_field_length(nexus_messages[r].fields[i]);
            m.role[r][i] = nexus_role_of(nexus_messages[r].fields[i]);
        }
    }
    return m;
}

const message_numbers numbers = read_numbers();

}  // namespace

nexus_role nexus_role_of(const char* name) {
    for (const role_row& r : roles)
        if (std::strcmp(r.name, name) == 0) return r.role;
    return nexus_role::plain;
}

int validate_tcode(uint32_t tcode, int* row) {
    const message_numbers& n = numbers;
    for (int r = 0; r < NEXUS_MESSAGE_ROWS; r++) {
        if (n.tcode[r] == tcode) {
            *row = r;
            return 1;
        }
    }
    return 0;
}

const char* get_msg_type(uint32_t tcode) {
    int row;
    return validate_tcode(tcode, &row) ? nexus_messages[row].name : "Unsupported Message Type";
}

int32_t get_field_length(const char* name) {
    for (const nexus_width_row& w : nexus_field_length) {
        if (std::strcmp(w.name, name) != 0) continue;
        if (std::strcmp(w.width, "VAR") == 0) return -1;
        return int32_t(std::strtol(w.width, nullptr, 10));
    }
    return 0;
}

uint8_t get_msg_field_count(int row) { return numbers.field_count[row]; }

int get_msg_field_details(nexus_msg* msg, uint32_t, int row) {
    for (int i = 0; i < NEXUS_MAX_FIELDS; i++) {
        nexus_field& field = msg->fields[size_t(i)];
        const bool used = i < msg->field_count && i < 7;
        field.name = used ? nexus_messages[row].fields[i] : "";
        field.bits = used ? numbers.bits[row][i] : 0;
        field.role = used ? numbers.role[row][i] : nexus_role::plain;
    }
    return 0;
}

void tell_invalid_mask() { std::fputs("Invalid start or stop index found !!!", stderr); }
