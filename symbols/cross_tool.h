// The external cross tool that names function, file and line of an address in
// a symbol file. One tool process serves each symbol file for the whole run:
// addresses go to its standard input, two answer lines come back per address.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Where the tool is looked for, in this order: the site's cross-compiler tree,
// then these names on PATH.
inline constexpr const char* CROSS_TOOL_SITE_PATH = "/opt/ose/powerpc-ose-eabi/bin/powerpc-ose-eabi-addr2line";
inline constexpr const char* CROSS_TOOL_NAME = "powerpc-ose-eabi-addr2line";
inline constexpr const char* CROSS_TOOL_FALLBACK = "addr2line";

// The tool's two answer lines, each cut as a 1022-character line reader cuts
// them. A line the tool never printed reads as "??".
struct cross_tool_answer {
    std::string function;
    std::string position;
};

// The tool's path, or empty if there is none; looked up once per run.
const std::string& cross_tool_path();
// A directory list search as `which` does it: an executable regular file.
std::string cross_tool_search_path(const char* name, const char* path_list);
// The tool's answer for one address as linked in the file. An answer that
// came with an earlier batch is not asked again: the tool's answers depend
// on the file and the address alone. The answer stays until cross_tool_close_all.
const cross_tool_answer& cross_tool_translate(const std::string& elf_file, uint32_t lookup);

// Asks for many addresses at once: all are written to the tool while its
// answers are read, instead of one round trip each.
struct cross_tool_request {
    std::string elf_file;
    uint32_t lookup;
};
void cross_tool_prefetch(const std::vector<cross_tool_request>& requests);
// Ends every tool process and forgets the tool's path and its answers. The
// call trace does it when it is done; the run, for tools that the Nexus
// report started in a run without a call trace.
void cross_tool_close_all();
// Cuts the tool's two lines as a reader of lines of up to 1022 characters would.
cross_tool_answer cross_tool_cut_answer(const std::string& first, const std::string& second, int lines_read);
