#include "db/tables.hh"

#include "tests/support/device_test.hh"

class Tables : public DeviceTest {};

TEST_F(Tables, NumbersHaveTheirNames) {
    EXPECT_STREQ(table_name(1), "package_info_table");
    EXPECT_STREQ(table_name(2), "pkg_upgrade_table");
    EXPECT_STREQ(table_name(3), "server_table");
    EXPECT_STREQ(table_name(4), "auto_sync_table");
    for (int32_t table : {0, 5, -1, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(table_name(table), nullptr) << table;
    }
}

TEST_F(Tables, IntegersAreReadInBaseTenAndSaturate) {
    const struct {
        const char *value;
        int32_t number;
    } cases[] = {{"0", 0},
                 {"14", 14},
                 {"-7", -7},
                 {"010", 10},
                 {"0x10", 0},
                 {" 5", 5},
                 {"5 patches", 5},
                 {"", 0},
                 {"active", 0},
                 {"2147483647", INT32_MAX},
                 {"2147483648", INT32_MAX},
                 {"-2147483648", INT32_MIN},
                 {"-2147483649", INT32_MIN},
                 {"99999999999999999999", INT32_MAX},
                 {nullptr, 0}};
    for (const auto &one : cases) {
        EXPECT_EQ(column_number(one.value), one.number) << (one.value ? one.value : "(null)");
    }
}
