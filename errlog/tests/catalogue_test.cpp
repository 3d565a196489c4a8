// The OSE error catalogue's three lookups with their oddities.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "errlog/error_catalogue.h"

namespace {

std::vector<std::string> components_of(uint32_t code, const errOse_table** holds = nullptr) {
    std::vector<std::string> hits;
    const errOse_table* t = lg_find_component(code, [&](const errOse_table& hit) { hits.push_back(hit.name); });
    if (holds) *holds = t;
    return hits;
}

std::string error_name(const errOse_table& t, uint32_t code) {
    const errOse_error* row = lg_find_error(t, code);
    return row->code ? row->name : "";
}

TEST(Catalogue, SystemCallsAndComponents) {
    // System calls by the code's third byte alone.
    EXPECT_STREQ(lg_system_call(0xFF440012), "set_pri_for");
    EXPECT_EQ(lg_system_call(0x00450000), nullptr);
    const errOse_table* t = nullptr;
    EXPECT_EQ(components_of(0x00E00004, &t), (std::vector<std::string>{"PROGRAM MANAGER"}));
    EXPECT_EQ(error_name(*t, 0x00E00004), "PM_EINTERNAL");
    EXPECT_EQ(components_of(0x02200003, &t), (std::vector<std::string>{"DDA"}));
    // The kernel's row is not searched.
    EXPECT_TRUE(components_of(0x00000012, &t).empty());
    EXPECT_EQ(t, nullptr);
    EXPECT_TRUE(components_of(0xFFFFFFFF).empty());
    // Format Manager: its key takes 0x2xx, its rows are 0xC8 to 0xE9.
    EXPECT_EQ(components_of(0x000002C8, &t), (std::vector<std::string>{"EFS Format Manager"}));
    EXPECT_EQ(error_name(*t, 0x000002C8), "");
    EXPECT_TRUE(components_of(0x000000C8).empty());
}

TEST(Catalogue, RowsByTheirCompareMasks) {
    const struct {
        const errOse_table& table;
        uint32_t code;
        const char* name;
    } rows[] = {
        {errOse_heap_error, 0x00820104, "OSE_HEAP_EENDMARK_OVERWRITTEN"},
        // Under 0xFF only the low bytes meet; 0xFFFF sees the difference.
        {errOse_bsp_error, 0x12345603, "OSE_BSP_EBIOSCALL_FAILED"},
        {errOse_heap_error, 0x00820004, "OSE_HEAP_EUNKNOWN_FCODE"},
        {errOse_heap_error, 0x00820204, ""},
        // Bit 31 of a row's code is outside every mask.
        {errOse_ns_error, 0x008D0001, "OSENS_INTERNAL_ERR          "},
        {errOse_otl_error, 0x00610009, "OSE_OTL_ETOO_MANY_CONNECTIONS"},
        {errOse_kernel_err, 0x00110113, "OSE_EUNEXPECTED_EXCEPTION_REGDUMP"},
        {errOse_fm_error, 0xC8, "FM_EINVALID_NAME"},
        // RAGSOCK and SPLITETH: the first row stands for codes the mask doesn't tell apart.
        {errOse_ragsock_error, 0x00F20600, "RAGSOCK_ERR_NOMEM"},
        {errOse_spliteth_error, 0x00560020, "OSE_SPLITETH_ETMO_BUT_NOT_SELECTING"},
        {errOse_spliteth_error, 0x00560200, "OSE_SPLITETH_EDDCALL_FAILED"},
        // Names keep their blanks.
        {errOse_efsCommon_error, 0x00900003, " OSE_EFS_EHUNT_PARTMAN_FAILED"},
        {errOse_pm_error, 0x00E00006, " PM_EPERSISTENCY_FAILURE"},
    };
    for (const auto& r : rows) EXPECT_EQ(error_name(r.table, r.code), r.name) << std::hex << r.code;
    // A component without the row gives the end row, kind 0.
    const errOse_error* none = lg_find_error(errOse_bsp_error, 0x00880010);
    EXPECT_EQ(none->code, 0u);
    EXPECT_EQ(none->kind, 0u);
}

}  // namespace
