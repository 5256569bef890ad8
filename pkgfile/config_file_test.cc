#include "tests/support/device_test.hh"

namespace {

constexpr char caller[] = "cmpnt_parse_config_from_file";
constexpr char path[] = "/data/product";

}  // namespace

class ConfigFile : public DeviceTest {
protected:
    int32_t parse(int32_t mode, void *record, const char *file = path) {
        cmpnt_file_param param;
        set_file_param(&param, mode, 0, 0, 0);
        return cmpnt_parse_config_from_file(&param, file, record);
    }

    cmpnt_product_type product = {};
    cmpnt_history history = {};
};

TEST_F(ConfigFile, YieldsTheRecordOfTheCpu) {
    write_file(path, "Type: mem\nProduct: a\n\nType: cpu\nProduct: b\n\nType: cpu\nProduct: c\n\n");
    EXPECT_EQ(parse(1, &product), 0);
    EXPECT_STREQ(product.type, "cpu");
    EXPECT_STREQ(product.product, "b");
}

TEST_F(ConfigFile, KeepsALastRecordWithoutABlankLine) {
    write_file(path, "Type: cpu2\n\nType: mem\n");
    EXPECT_EQ(parse(1, &product), 0);
    EXPECT_STREQ(product.type, "mem");
}

TEST_F(ConfigFile, DoesNotZeroTheRecord) {
    strcpy(product.product, "before");
    write_file(path, "Type: cpu\n");
    EXPECT_EQ(parse(2, &product), 0);
    EXPECT_STREQ(product.type, "cpu");
    EXPECT_STREQ(product.product, "before");
}

TEST_F(ConfigFile, PrintsTheHistoryRecordsThatABlankLineEnds) {
    write_file(path, "Time: 1\nCmd: c\nPatch: p\nMsg: m\n\nTime: 2\n");
    EXPECT_EQ(parse(3, &history), 0);
    EXPECT_EQ(platform.cli,
              "    Time:      1\n    Cmd:       c\n    Patch:     p\n    Msg:       m\n\n");
    EXPECT_STREQ(history.time, "2");
}

TEST_F(ConfigFile, EndsQuietlyAtAFieldWithoutValue) {
    write_file(path, "Time: 1\nPatch:\nCmd: c\n\n");
    EXPECT_EQ(parse(3, &history), 0);
    EXPECT_STREQ(history.time, "1");
    EXPECT_STREQ(history.cmd, "");
    EXPECT_EQ(traced("error", caller, "parse_info_from_stream fail, maybe not error.\n"), 0);
}

TEST_F(ConfigFile, FailsAtALineTooLong) {
    write_file(path, std::string(1048575, 'x') + "\n");
    EXPECT_EQ(parse(1, &product), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", caller, "parse_info_from_stream fail, maybe not error.\n"));
}

TEST_F(ConfigFile, FailsWithoutAFile) {
    EXPECT_EQ(parse(1, &product), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", caller, "file(/data/product) is no exist.\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_F(ConfigFile, FailsForWhatCannotBeWritten) {
    EXPECT_EQ(parse(1, &product, "/data"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", caller, "Failed to fopen /data\n"));
}

TEST_F(ConfigFile, FailsWithoutMemoryForALine) {
    write_file(path, "Type: cpu\n\n");
    const int before = open_descriptors();
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(parse(1, &product), -1);
    EXPECT_EQ(trace_lines().size(), 1u);
    EXPECT_STREQ(product.type, "");
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(ConfigFile, RefusesNull) {
    write_file(path, "Type: cpu\n\n");
    cmpnt_file_param param = {};
    EXPECT_EQ(cmpnt_parse_config_from_file(nullptr, path, &product), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", caller, "input param is error.\n"));
    EXPECT_EQ(cmpnt_parse_config_from_file(&param, nullptr, &product), -1);
    EXPECT_EQ(cmpnt_parse_config_from_file(&param, path, nullptr), -1);
    EXPECT_EQ(traced("error", caller, "input param is error.\n"), 3);
    EXPECT_EQ(trace_lines().size(), 3u);
}
