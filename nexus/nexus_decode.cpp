// The decoder of one Nexus message: a state machine that goes through the
// words once. Fixed fields are packed one behind the other across a word's
// 30 payload bits; a variable field takes the rest of a word and goes on in
// the next words; some fields end a word early.
//
// The arithmetic is that of 8-bit counters and of shifts by their count
// modulo 32, on purpose: the field values printed rest on it.
#include "nexus/nexus_messages.h"

namespace {

// Working state for one message.
struct decoder {
    nexus_msg* msg;
    bool otm;  // field 2 is PID_INDX: the process identity has its own rules
    uint8_t f = 0;
    uint8_t bit = 0;
    uint8_t stop = 0;
    uint8_t room = 0;
    uint32_t last = 0;
    bool in_fixed = false;
    bool in_var = false;
    bool split = false;
    uint8_t var_word = 0;
    uint8_t var_bits = 0;
    uint8_t rest = 0;
};

uint32_t shl(uint32_t v, int count) { return v << (uint32_t(count) & 31); }
uint32_t shr(uint32_t v, int count) { return v >> (uint32_t(count) & 31); }
uint32_t mask(int a, int b) { return get_field_mask(uint32_t(a), uint32_t(b)); }

bool past_last_field(const decoder& s) { return s.f >= s.msg->field_count; }
nexus_field& current(decoder& s) { return s.msg->fields[s.f]; }
bool current_is(const decoder& s, nexus_role role) {
    return !past_last_field(s) && s.msg->fields[s.f].role == role;
}

// Words behind the last field still go through the steps, whose masks may
// complain, but write nowhere. Writes beyond the value array are dropped;
// the spare entry makes them rare.
void set_value(decoder& s, uint8_t index, uint32_t v) {
    if (!past_last_field(s) && index < NEXUS_VALUE_WORDS) current(s).value[index] = v;
}
void or_value(decoder& s, uint8_t index, uint32_t v) {
    if (!past_last_field(s) && index < NEXUS_VALUE_WORDS) current(s).value[index] |= v;
}

// Places fields into a word until it is used up or a field stays open.
void placing_loop(decoder& s, uint32_t d, uint32_t mseo) {
    for (;;) {
        // No field is open behind the last one, so this is also the bound of
        // the open field's index.
        if (past_last_field(s)) return;
        if (!s.in_fixed && !s.in_var) {
            if (current(s).bits < 1) {
                s.in_var = true;
                s.var_bits = 0;
            } else {
                s.in_fixed = true;
                s.stop = uint8_t(current(s).bits + s.bit - 1);
            }
        }
        const int bits = current(s).bits;
        int step;  // what tells the loop to go on, and where the next piece starts
        if (s.in_fixed) {
            if (s.stop > 29) {
                // The field runs on into the next word.
                s.split = true;
                s.last = shr(d & mask(s.bit, 29), s.bit);
                s.stop = uint8_t(bits + s.bit - 31);
                s.room = 0;
                or_value(s, 0, (s.bit & 7) != 0 ? shl(s.last, s.stop + 1) : s.last);
                s.bit = 0;
                return;
            }
            s.last = shr(d & mask(s.bit, s.stop), s.bit);
            if (s.split) {
                s.last = shl(s.last, bits - 1 - s.stop);
                step = 31 - s.stop;
            } else if (current_is(s, nexus_role::i_cnt) || current_is(s, nexus_role::f_addr)) {
                step = 0;  // these end the word: what stands behind them is ignored
            } else {
                step = s.room - bits;
            }
            or_value(s, 0, s.last);
            s.f++;
            s.split = false;
            s.in_fixed = false;
            s.bit = uint8_t(30 - step);
        } else {
            // A variable field begins in this word.
            if (s.otm && s.last == 2) s.bit++;  // PID_INDX 2: one more bit of index
            s.last = d & mask(s.bit, 29);
            s.split = true;
            step = 0;
            s.var_bits = uint8_t(s.var_bits + 30 - s.bit);
            const int x = s.var_bits & 31;
            s.rest = uint8_t(32 - x);
            or_value(s, s.var_word, shr(s.last, 30 - x));
            if (s.var_bits > 31) s.var_word++;
            if (mseo == 1) {
                s.f++;
                s.in_var = false;
            }
        }
        s.room = current_is(s, nexus_role::tstamp) && mseo == 1 ? 0 : uint8_t(step);
        if (s.room == 0) return;
    }
}

// A word that goes on with the open variable field, closing it at an end.
void variable_step(decoder& s, uint32_t d, bool end) {
    s.var_bits = uint8_t(s.var_bits + 30);
    if (end && s.rest < 3) {
        // The field began at a word's start: this payload is its next value word.
        s.var_word++;
        set_value(s, s.var_word, d);
        s.rest = 2;
    } else {
        const int r = s.rest;
        set_value(s, s.var_word, shr(d & mask(0, r - 1), 32 - r));
        s.var_word++;
        const int x = s.var_bits & 31;
        s.rest = uint8_t(32 - x);
        s.last = d & mask(r, 29);
        set_value(s, s.var_word, shl(s.last, 30 - x));
    }
    if (end) s.f++;
}

// The rest of a process identity, in the OTM's second word.
void otm_tail(decoder& s, uint32_t d) {
    s.last = d & mask(0, 32 - s.var_bits);
    s.var_word++;
    set_value(s, s.var_word, s.last);
    s.f++;
}

}  // namespace

int get_msg_field_values(nexus_msg* msg, std::span<const uint32_t> words) {
    // Fields behind the last are never written.
    for (int i = 0; i < msg->field_count && i < NEXUS_MAX_FIELDS; i++) msg->fields[size_t(i)].value.fill(0);
    if (words.empty()) return 0;
    decoder s{msg, msg->field_count > 2 && msg->fields[2].role == nexus_role::pid_indx};

    msg->fields[0].value[0] = msg->tcode;
    msg->fields[1].value[0] = msg->src;
    s.f = 2;
    s.bit = 12;
    s.room = 18;
    placing_loop(s, nexus_payload(words[0]), nexus_mseo(words[0]));

    for (uint32_t word : words.subspan(1)) {
        const uint32_t d = nexus_payload(word);
        switch (nexus_mseo(word)) {
        case 2:
        case 3:
            if (s.otm && !current_is(s, nexus_role::tstamp)) otm_tail(s, d);
            else if (!s.in_var) set_value(s, 0, d);  // replaces what a fixed field took before
            else variable_step(s, d, true);
            break;
        case 1:
            if (s.otm) {
                otm_tail(s, d);  // in_var stays as it is
                break;
            }
            s.bit = 0;
            s.room = 32;
            if (s.in_var) {
                variable_step(s, d, true);
                s.in_var = false;
            } else {
                placing_loop(s, d, 1);
            }
            break;
        default:
            s.bit = 0;
            s.room = 32;
            if (s.in_var) variable_step(s, d, false);
            else placing_loop(s, d, 0);
            break;
        }
    }
    return 0;
}
