#include "pkgfile/config_line.hh"

#include "tests/support/device_test.hh"

namespace {

constexpr char handler[] = "cmpnt_parse_config_file";

struct Step {
    const char *line;
    int32_t result;
};

}  // namespace

class ConfigLine : public DeviceTest {
protected:
    template <typename Record>
    static int32_t parse(Record &record, const std::string &line, int32_t mode) {
        cmpnt_file_param param;
        set_file_param(&param, mode, 0, 0, 0);
        std::string buffer = line;
        return cmpnt_parse_config_file(&record, &buffer[0], &param);
    }
    template <typename Record>
    static bool is_zero(const Record &record) {
        const Record zeros = {};
        return memcmp(&record, &zeros, sizeof(record)) == 0;
    }

    cmpnt_product_type product = {};
    cmpnt_history history = {};
};

TEST_F(ConfigLine, FillsTheProductTypeRecord) {
    for (const int32_t mode : {config_find_cpu_product, config_last_product}) {
        product = {};
        EXPECT_EQ(parse(product, "Type: cpu", mode), 0);
        EXPECT_EQ(parse(product, "Product: a b", mode), 0);
        EXPECT_STREQ(product.type, "cpu");
        EXPECT_STREQ(product.product, "a b");
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ConfigLine, FillsTheHistoryRecord) {
    for (const int32_t mode : {config_print_history, config_log_history}) {
        history = {};
        EXPECT_EQ(parse(history, "Time: 2024-03-01 10:15:02", mode), 0);
        EXPECT_EQ(parse(history, "Cmd: activate", mode), 0);
        EXPECT_EQ(parse(history, "Patch: foo", mode), 0);
        EXPECT_EQ(parse(history, "Msg: done: well", mode), 0);
        EXPECT_STREQ(history.time, "2024-03-01 10:15:02");
        EXPECT_STREQ(history.cmd, "activate");
        EXPECT_STREQ(history.patch, "foo");
        EXPECT_STREQ(history.msg, "done: well");
        EXPECT_EQ(parse(history, "Smu_name: smu", mode), 0);
        EXPECT_STREQ(history.patch, "smu");
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ConfigLine, CutsTextsToTheirFields) {
    const std::string text(200, 'x');
    parse(product, "Type: " + text, config_last_product);
    parse(product, "Product: " + text, config_last_product);
    EXPECT_STREQ(product.type, text.substr(0, 31).c_str());
    EXPECT_STREQ(product.product, text.substr(0, 63).c_str());
    for (const char *field : {"Time: ", "Cmd: ", "Patch: ", "Msg: "}) {
        parse(history, field + text, config_print_history);
    }
    EXPECT_STREQ(history.time, text.substr(0, 31).c_str());
    EXPECT_STREQ(history.cmd, text.substr(0, 31).c_str());
    EXPECT_STREQ(history.patch, text.substr(0, 79).c_str());
    EXPECT_STREQ(history.msg, text.substr(0, 127).c_str());
}

TEST_F(ConfigLine, IgnoresOtherKeys) {
    for (const char *line : {"type: cpu", "TYPE: cpu", "Types: cpu", " Type: cpu", "Product_id: 1",
                             "Patches: x", "Xyz: 1", "Msgs: x", "Cmds: x", "cmd: x", "Times: x",
                             "Smu: x", "#", "/etc", "\xd4ype: x"}) {
        for (const int32_t mode : {1, 2}) {
            EXPECT_EQ(parse(product, line, mode), 0) << line;
        }
        for (const int32_t mode : {3, 4}) {
            EXPECT_EQ(parse(history, line, mode), 0) << line;
        }
    }
    EXPECT_TRUE(is_zero(product));
    EXPECT_TRUE(is_zero(history));
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ConfigLine, IgnoresFieldsOfTheOtherRecord) {
    for (const char *line : {"Cmd: x", "Msg: x", "Patch: x", "Smu_name: x", "Time: x", "Cmd:"}) {
        EXPECT_EQ(parse(product, line, config_find_cpu_product), 0);
        EXPECT_EQ(parse(product, line, config_last_product), 0);
    }
    for (const char *line : {"Type: cpu", "Product: x", "Type:"}) {
        EXPECT_EQ(parse(history, line, config_print_history), 0);
        EXPECT_EQ(parse(history, line, config_log_history), 0);
    }
    EXPECT_TRUE(is_zero(product));
    EXPECT_TRUE(is_zero(history));
}

TEST_F(ConfigLine, StopsAtAFieldWithoutValue) {
    for (const char *line : {"Type:", "Product: "}) {
        forget_log();
        EXPECT_EQ(parse(product, line, config_find_cpu_product), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", handler, "cmpnt_parse_str_field fail.\n"));
    }
    for (const char *line : {"Time:", "Cmd:", "Patch:"}) {
        forget_log();
        EXPECT_EQ(parse(history, line, config_log_history), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", handler, "cmpnt_parse_str_field fail.\n"));
    }
}

TEST_F(ConfigLine, GoesOnWithoutAMessageOrAnSmuName) {
    for (const char *line : {"Msg:", "Smu_name:"}) {
        forget_log();
        EXPECT_EQ(parse(history, line, config_print_history), 0);
        EXPECT_EQ(
            traced("trace", "cmpnt_parse_str_field",
                   "parse_simple fail, field(" + std::string(line).substr(0, strlen(line) - 1) +
                       "), line(" + line + ").\n"),
            1);
        EXPECT_EQ(trace_lines().size(), 1u);
    }
}

TEST_F(ConfigLine, StopsAtTheRecordOfTheCpu) {
    const Step steps[] = {{"Type: mem", 0}, {"Product: first", 0},  {"", 0},
                          {"Type: cpu", 0}, {"Product: second", 0}, {" \r", -1}};
    for (const Step &step : steps) {
        EXPECT_EQ(parse(product, step.line, config_find_cpu_product), step.result) << step.line;
    }
    EXPECT_STREQ(product.type, "cpu");
    EXPECT_STREQ(product.product, "second");
    EXPECT_TRUE(logged("CMPNT_TRACE", "cmpnt_config_blank_line_deal",
                       "the product(second) is target, so stop look.\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_F(ConfigLine, ForgetsTheRecordOfAnythingElse) {
    for (const char *type : {"Type: mem", "Type: CPU", "Type: cpu2", "Product: cpu"}) {
        parse(product, type, config_find_cpu_product);
        EXPECT_EQ(parse(product, "", config_find_cpu_product), 0);
        EXPECT_TRUE(is_zero(product));
    }
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ConfigLine, LetsLaterProductsOverwriteFieldByField) {
    for (const char *line : {"Type: cpu", "Product: first", "", "Type: mem", ""}) {
        EXPECT_EQ(parse(product, line, config_last_product), 0);
    }
    EXPECT_STREQ(product.type, "mem");
    EXPECT_STREQ(product.product, "first");
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ConfigLine, PrintsAHistoryRecordToTheOperator) {
    for (const char *line : {"Time: now", "Cmd: activate", "Patch: foo", "Msg: done", ""}) {
        EXPECT_EQ(parse(history, line, config_print_history), 0);
    }
    EXPECT_EQ(platform.cli,
              "    Time:      now\n    Cmd:       activate\n    Patch:     foo\n"
              "    Msg:       done\n\n");
    EXPECT_TRUE(is_zero(history));
    EXPECT_TRUE(platform.syslog.empty());
    parse(history, " ", config_print_history);
    EXPECT_EQ(platform.cli.substr(platform.cli.find("\n\n") + 2),
              "    Time:      \n    Cmd:       \n    Patch:     \n    Msg:       \n\n");
}

TEST_F(ConfigLine, LogsAHistoryRecordInColumnsWhateverTheLevel) {
    g_cmpnt_dbg_level = 0;
    for (const char *line : {"Time: now", "Cmd: activate", "Patch: foo", "Msg: done", ""}) {
        EXPECT_EQ(parse(history, line, config_log_history), 0);
    }
    std::string text;
    for (const SyslogCall &call : platform.syslog) {
        EXPECT_EQ(call.tag, "CMPNT_HISTORY");
        EXPECT_EQ(call.module, "INFO");
        EXPECT_EQ(call.priority, 6);
        text += call.text;
    }
    auto column = [](const char *value, size_t width) {
        return value + std::string(width - strlen(value), ' ');
    };
    EXPECT_EQ(text, "\n" + column("Time", 16) + column("now", 32) + "\n" + column("Cmd", 16) +
                        column("activate", 32) + "\n" + column("Patch", 16) + column("foo", 80) +
                        "\n" + column("Msg", 16) + column("done", 128) + "\n\n");
    EXPECT_EQ(platform.syslog.size(), 6u);
    EXPECT_TRUE(is_zero(history));
    EXPECT_TRUE(platform.cli.empty());
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ConfigLine, IgnoresEveryLineInOtherModes) {
    for (const int32_t mode : {0, 5, -1, INT32_MAX}) {
        for (const char *line : {"Type: cpu", "Type:", "Time: now", ""}) {
            EXPECT_EQ(parse(product, line, mode), 0);
            EXPECT_EQ(parse(history, line, mode), 0);
        }
    }
    EXPECT_TRUE(is_zero(product));
    EXPECT_TRUE(is_zero(history));
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ConfigLine, RefusesNull) {
    cmpnt_file_param param = {};
    char line[] = "Type: cpu";
    EXPECT_EQ(cmpnt_parse_config_file(nullptr, line, &param), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", handler, "input param is null.\n"));
    EXPECT_EQ(cmpnt_parse_config_file(&product, nullptr, &param), -1);
    EXPECT_EQ(cmpnt_parse_config_file(&product, line, nullptr), -1);
    EXPECT_EQ(traced("error", handler, "input param is null.\n"), 3);
}
