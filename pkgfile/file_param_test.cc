#include "tests/support/device_test.hh"

class FileParam : public DeviceTest {};

TEST_F(FileParam, HoldsItsFourWordsInOrderAndNoStatement) {
    cmpnt_file_param param;
    memset(&param, 0x55, sizeof(param));
    set_file_param(&param, 3, INTPTR_MIN, 5, INTPTR_MAX);
    EXPECT_EQ(param.mode, 3);
    EXPECT_EQ(param.name, INTPTR_MIN);
    EXPECT_EQ(param.second, 5);
    EXPECT_EQ(param.third, INTPTR_MAX);
    EXPECT_EQ(param.statement, nullptr);
}

TEST_F(FileParam, HoldsAPointer) {
    const char name[] = "package";
    cmpnt_file_param param;
    set_file_param(&param, CMPNT_PARSE_FIND_PACKAGE, reinterpret_cast<intptr_t>(name), 0, 0);
    EXPECT_EQ(reinterpret_cast<const char *>(param.name), name);
}

TEST_F(FileParam, IgnoresNull) {
    set_file_param(nullptr, 1, 2, 3, 4);
    EXPECT_TRUE(trace_messages().empty());
}
