// The OSE error catalogue: its shape, and the three lookups with their oddities.
#include <gtest/gtest.h>

#include <map>
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

TEST(Catalogue, Shape) {
    int calls = 0;
    for (const errOse_syscall* s = errOse_systemCalls; s->code; s++) {
        calls++;
        EXPECT_EQ(s->code, uint32_t(calls) << 16) << s->name;
    }
    EXPECT_EQ(calls, 68);

    const std::vector<int> rows = {91, 4, 6, 17, 4, 1, 6, 27, 4, 3, 6, 10, 7, 4, 34, 6, 7, 6, 4, 1, 4};
    std::map<uint32_t, int> kinds;
    int tables = 0, total = 0;
    for (const errOse_component* c = errOse; c->key != ERROSE_END_KEY; c++, tables++) {
        ASSERT_LT(tables, 21);
        int n = 0;
        for (const errOse_error* e = c->table->rows; e->code; e++, n++) {
            kinds[e->kind]++;
            EXPECT_NE(e->text, nullptr);
            EXPECT_NE(e->name, nullptr);
        }
        EXPECT_EQ(n, rows[tables]) << c->table->name;
        total += n;
        EXPECT_EQ(c->reserved, 0u);
    }
    EXPECT_EQ(tables, 21);
    EXPECT_EQ(total, 252);
    EXPECT_EQ(kinds, (std::map<uint32_t, int>{{0, 89}, {1, 130}, {4, 8}, {8, 8}, {0x40, 8}, {0x80, 1}, {0x100, 8}}));
}

TEST(Catalogue, SystemCalls) {
    EXPECT_STREQ(lg_system_call(0x00010000), "addressee");
    EXPECT_STREQ(lg_system_call(0xFF440012), "set_pri_for");
    EXPECT_STREQ(lg_system_call(0x00110031), "free_buf");
    EXPECT_EQ(lg_system_call(0x00000031), nullptr);
    EXPECT_EQ(lg_system_call(0x00450000), nullptr);
}

TEST(Catalogue, ComponentSearch) {
    // Program manager and RTL both take 0x00E01003; the later RTL holds.
    const errOse_table* t = nullptr;
    EXPECT_EQ(components_of(0x00E01003, &t), (std::vector<std::string>{"PROGRAM MANAGER", "RTL"}));
    EXPECT_EQ(t, &errOse_rtl_error);
    EXPECT_EQ(error_name(*t, 0x00E01003), "RTL_EPM_CONNECTION_DENIED");
    EXPECT_EQ(components_of(0x00E00004, &t), (std::vector<std::string>{"PROGRAM MANAGER"}));
    EXPECT_EQ(error_name(*t, 0x00E00004), "PM_EINTERNAL");
    EXPECT_EQ(components_of(0x02200003, &t), (std::vector<std::string>{"DDA"}));
    // The kernel's row is not searched.
    EXPECT_TRUE(components_of(0x00000012, &t).empty());
    EXPECT_EQ(t, nullptr);
    EXPECT_TRUE(components_of(0xFFFFFFFF).empty());
}

TEST(Catalogue, CompareMasks) {
    EXPECT_EQ(error_name(errOse_heap_error, 0x00820104), "OSE_HEAP_EENDMARK_OVERWRITTEN");
    // Under 0xFF only the low bytes meet; 0xFFFF sees the difference.
    EXPECT_EQ(error_name(errOse_bsp_error, 0x12345603), "OSE_BSP_EBIOSCALL_FAILED");
    EXPECT_EQ(error_name(errOse_heap_error, 0x00820004), "OSE_HEAP_EUNKNOWN_FCODE");
    EXPECT_EQ(error_name(errOse_heap_error, 0x00820204), "");
    // Bit 31 of a row's code is outside every mask.
    EXPECT_EQ(error_name(errOse_ns_error, 0x008D0001), "OSENS_INTERNAL_ERR          ");
    EXPECT_EQ(error_name(errOse_otl_error, 0x00610009), "OSE_OTL_ETOO_MANY_CONNECTIONS");
    // A component without the row gives the end row, kind 0.
    const errOse_error* none = lg_find_error(errOse_bsp_error, 0x00880010);
    EXPECT_EQ(none->code, 0u);
    EXPECT_EQ(none->kind, 0u);
    EXPECT_EQ(error_name(errOse_kernel_err, 0x00110113), "OSE_EUNEXPECTED_EXCEPTION_REGDUMP");
}

TEST(Catalogue, OddTablesKeepTheirKeys) {
    const errOse_table* t = nullptr;
    // Format Manager: its key takes 0x2xx, its rows are 0xC8 to 0xE9.
    EXPECT_EQ(components_of(0x000002C8, &t), (std::vector<std::string>{"EFS Format Manager"}));
    EXPECT_EQ(error_name(*t, 0x000002C8), "");
    EXPECT_TRUE(components_of(0x000000C8).empty());
    EXPECT_EQ(error_name(errOse_fm_error, 0xC8), "FM_EINVALID_NAME");
    // RAGSOCK and SPLITETH: the first row stands for codes the mask doesn't tell apart.
    EXPECT_EQ(error_name(errOse_ragsock_error, 0x00F20600), "RAGSOCK_ERR_NOMEM");
    EXPECT_EQ(error_name(errOse_spliteth_error, 0x00560020), "OSE_SPLITETH_ETMO_BUT_NOT_SELECTING");
    EXPECT_EQ(error_name(errOse_spliteth_error, 0x00560200), "OSE_SPLITETH_EDDCALL_FAILED");
}

TEST(Catalogue, NamesKeepTheirBlanks) {
    EXPECT_EQ(error_name(errOse_efsCommon_error, 0x00900003), " OSE_EFS_EHUNT_PARTMAN_FAILED");
    EXPECT_EQ(error_name(errOse_efsStartEfs_error, 0x00940005), " OSE_EFS_STARTEFS_ERESOLVE_FAILED");
    EXPECT_EQ(error_name(errOse_pm_error, 0x00E00006), " PM_EPERSISTENCY_FAILURE");
    EXPECT_EQ(error_name(errOse_ns_error, 0x008D0000), "OSENS_NOT_IMPLEMENTED_ERR   ");
    EXPECT_STREQ(lg_find_error(errOse_efsCommon_error, 0x00900004)->text,
                 "Abort call made. \n\n   info: %s\n   file: %s\n   line: %d\n");
}

}  // namespace
