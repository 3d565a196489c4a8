// The DWARF 2 line program, run until the row that follows the address.
#include <cstdio>
#include <vector>

#include "zdb_src/dwarf2.h"

namespace zdb_dwarf2 {

namespace {

enum : uint8_t {
    DW_LNS_copy = 1,
    DW_LNS_advance_pc,
    DW_LNS_advance_line,
    DW_LNS_set_file,
    DW_LNS_set_column,
    DW_LNS_negate_stmt,
    DW_LNS_set_basic_block,
    DW_LNS_const_add_pc,
    DW_LNS_fixed_advance_pc,
};

enum : uint8_t {
    DW_LNE_end_sequence = 1,
    DW_LNE_set_address,
    DW_LNE_define_file,
};

struct line_header {
    uint8_t min_inst_length = 0;
    int8_t line_base = 0;
    uint8_t line_range = 0;
    uint8_t opcode_base = 0;
    std::vector<std::string_view> dirs;   // include directories, numbered from 1
    std::vector<std::string_view> files;  // numbered from 1
    std::vector<uint32_t> file_dirs;      // each file's directory index
};

// The state of one sequence. Line arithmetic wraps as the target's would.
struct line_state {
    uint32_t address = 0, file = 1, line = 1, start = 0;
    uint32_t row_file = 1, row_line = 0;  // the remembered row
};

enum class row_result { go_on, found, failed };

// The first row above the address closes the range of the one before it.
row_result emit_row(const line_header& h, line_state& st, uint32_t addr, std::string* file_name,
                    int32_t* line, std::string* file_dir) {
    if (addr >= st.start && st.address > addr) {
        // A file index outside the table is a damaged program, not an answer.
        if (st.row_file == 0 || st.row_file > h.files.size()) return row_result::failed;
        file_name->assign(h.files[st.row_file - 1]);
        *line = int32_t(st.row_line);
        if (file_dir) {
            const uint32_t dir = h.file_dirs[st.row_file - 1];
            file_dir->assign(dir != 0 && dir <= h.dirs.size() ? h.dirs[dir - 1] : std::string_view());
        }
        return row_result::found;
    }
    st.row_file = st.file;
    st.row_line = st.line;
    return row_result::go_on;
}

}  // namespace

int find_fileline(const dwarf2_sections& s, uint64_t offset, uint32_t addr, std::string* file_name,
                  int32_t* line, std::string* file_dir) {
    byte_cursor head(s.line, offset);
    uint32_t total = read_u32(head);
    if (!head.ok()) return 0;
    uint64_t end = uint64_t(head.tell()) + total;
    if (end > s.line.size()) end = s.line.size();
    byte_cursor p(s.line.first(end), head.tell());

    line_header h;
    read_u16(p);  // version, not tested
    uint32_t header_length = read_u32(p);
    uint64_t program = uint64_t(p.tell()) + header_length;
    h.min_inst_length = read_u8(p);
    read_u8(p);  // default is_stmt
    h.line_base = read_s8(p);
    h.line_range = read_u8(p);
    h.opcode_base = read_u8(p);
    p.skip(h.opcode_base > 0 ? h.opcode_base - 1 : 0);
    for (;;) {
        std::string_view dir = read_string(p);
        if (!p.ok() || dir.empty()) break;
        h.dirs.push_back(dir);
    }
    for (;;) {
        std::string_view name = read_string(p);
        if (!p.ok() || name.empty()) break;
        h.file_dirs.push_back(read_uleb128(p));
        read_uleb128(p);
        read_uleb128(p);
        h.files.push_back(name);
    }
    if (!p.ok() || h.line_range == 0 || program > end) return 0;
    p.seek(program);

    while (p.tell() < end) {
        line_state st;
        for (bool sequence_ends = false; !sequence_ends;) {
            uint8_t op = read_u8(p);
            if (!p.ok()) return 0;
            bool emit = false;
            if (op >= h.opcode_base) {
                uint32_t adjusted = uint32_t(op - h.opcode_base);
                st.line += uint32_t(int32_t(h.line_base)) + adjusted % h.line_range;
                st.address += h.min_inst_length * (adjusted / h.line_range);
                emit = true;
            } else {
                switch (op) {
                case 0: {
                    uint32_t length = read_uleb128(p);
                    uint8_t sub = read_u8(p);
                    if (length == 0) break;
                    if (sub == DW_LNE_end_sequence) {
                        emit = true;
                        sequence_ends = true;
                    } else if (sub == DW_LNE_set_address) {
                        st.address = read_u32(p);
                        st.start = st.address;
                    } else if (sub == DW_LNE_define_file) {
                        read_string(p);
                        read_uleb128(p);
                        read_uleb128(p);
                        read_uleb128(p);
                    } else if (sub == 4) {
                        st.address += read_uleb128(p);
                    } else {
                        std::fprintf(stderr, "Unknown extened dwarf2 opcode (%ld)\n", long(sub));
                        return 0;
                    }
                    break;
                }
                case DW_LNS_copy:
                    emit = true;
                    break;
                case DW_LNS_advance_pc:
                    st.address += h.min_inst_length * read_uleb128(p);
                    break;
                case DW_LNS_advance_line:
                    st.line += read_sleb128(p);
                    break;
                case DW_LNS_set_file:
                    st.file = read_uleb128(p);
                    break;
                case DW_LNS_set_column:
                    read_uleb128(p);
                    break;
                case DW_LNS_negate_stmt:
                case DW_LNS_set_basic_block:
                    break;
                case DW_LNS_const_add_pc:
                    st.address += h.min_inst_length * ((255u - h.opcode_base) / h.line_range);
                    break;
                case DW_LNS_fixed_advance_pc:
                    st.address += read_u16(p);
                    break;
                default:
                    std::fprintf(stderr, "Undefined opcode (%#x)\n", unsigned(op));
                    return 0;
                }
            }
            if (!p.ok()) return 0;
            if (emit) {
                row_result r = emit_row(h, st, addr, file_name, line, file_dir);
                if (r == row_result::found) return 1;
                if (r == row_result::failed) return 0;
            }
        }
    }
    return 0;
}

}  // namespace zdb_dwarf2
