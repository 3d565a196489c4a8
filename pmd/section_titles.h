// What a section's title says it holds. The printing of a section and the
// call trace read stacks and registers by different rules, so each rule has a
// name of its own; all compare with case.
#pragma once

#include <string_view>

// Printed as a stack dump: begins "Stack for " or holds "STACK FOR".
inline bool is_stack_dump_title(std::string_view t) {
    return t.starts_with("Stack for ") || t.find("STACK FOR") != std::string_view::npos;
}

// Walked by the call trace: any title holding "STACK", or one of the other
// stack titles boards write.
inline bool is_walked_stack_title(std::string_view t) {
    return t.find("STACK") != std::string_view::npos || t.starts_with("PMD stack") || t.starts_with("Stack for pid") ||
           t.starts_with("Supervisor stack");
}

// Printed as register text (when its payload agrees): begins "REGISTERS " or
// "CPU registers".
inline bool is_register_text_title(std::string_view t) {
    return t.starts_with("REGISTERS ") || t.starts_with("CPU registers");
}

// Register sets of the call trace, found anywhere in the title. Both texts
// are 22 characters long; the process's name or identity follows.
inline constexpr std::string_view process_registers_title = "REGISTERS FOR PROCESS ";
inline constexpr std::string_view cpu_registers_title = "CPU registers for pid ";
inline bool holds_process_registers_title(std::string_view t) {
    return t.find(process_registers_title) != std::string_view::npos;
}
inline bool holds_cpu_registers_title(std::string_view t) {
    return t.find(cpu_registers_title) != std::string_view::npos;
}
