// The run's settings, filled from the command line by cli/ and read by the
// components that print the report.
#pragma once

#include <cstdint>

inline constexpr uint32_t KRD_OPT_TIME = 0x0001;
inline constexpr uint32_t KRD_OPT_TIME_RELATIVE = 0x0002;
inline constexpr uint32_t KRD_OPT_LIST = 0x0004;
inline constexpr uint32_t KRD_OPT_ERROR = 0x0008;
inline constexpr uint32_t KRD_OPT_ZIP = 0x0800;
inline constexpr uint32_t KRD_OPT_BASIC_LMID = 0x1000;
inline constexpr uint32_t KRD_OPT_CONTINUE = 0x2000;
inline constexpr uint32_t KRD_OPT_GUESS_SP = 0x4000;
inline constexpr uint32_t KRD_OPT_NEXUS_NAMES = 0x8000;

inline constexpr int KRD_MAX_FILES = 256;

struct krd_options {
    const char* symbol_file = nullptr;
    const char* zip_files[KRD_MAX_FILES] = {};
    int32_t zip_count = 0;
    int32_t zip_current = 0;
    const char* mapping_files[KRD_MAX_FILES] = {};
    int32_t mapping_count = 0;
    const char* basic_lmid = nullptr;
    uint32_t sigsym_failed = 0;
    const char* section_filter = nullptr;
    uint32_t stack_pointer = 0;
    uint32_t symbol_offset = 0;
    uint32_t flags = 0;
    uint32_t demangle_style = 1;
};
