#include "tests/support/device_test.hh"
#include "tests/support/main_tables.hh"
#include "tests/support/sqlite.hh"

namespace {

using Row = std::vector<std::pair<const char *, const char *>>;

// A text in a column of this width.
std::string in(size_t width, std::string text) {
    text.resize(width, ' ');
    return text;
}

// A row as SQLite hands it over.
struct Pointers {
    explicit Pointers(const Row &row) {
        for (const auto &[name, value] : row) {
            names.push_back(const_cast<char *>(name));
            values.push_back(const_cast<char *>(value));
        }
    }
    std::vector<char *> names, values;
};

using Callback = int (*)(void *, int, char **, char **);

int show(Callback callback, int32_t &counter, const Row &row) {
    Pointers pointers(row);
    return callback(&counter, static_cast<int>(row.size()), pointers.values.data(),
                    pointers.names.data());
}

std::string shown(void (*print)(int32_t, char **, char **), const Row &row) {
    platform.cli.clear();
    Pointers pointers(row);
    print(static_cast<int32_t>(row.size()), pointers.values.data(), pointers.names.data());
    return platform.cli;
}

}  // namespace

class Display : public DeviceTest {
protected:
    int32_t counter = 0;
};

TEST_F(Display, FullViewHasAWidthForEachColumn) {
    const std::string text(50, 'x');
    const struct {
        const char *column;
        size_t width;  // 0: not shown
    } cases[] = {{"package_name", 25},
                 {"base_version", 20},
                 {"current_version", 20},
                 {"package_state", 20},
                 {"package_is_new", 20},
                 {"upgrade_count", 20},
                 {"patch_name", 32},
                 {"pkg_name", 15},
                 {"cur_version", 14},
                 {"last_version", 14},
                 {"card_id", 10},
                 {"cur_flag", 10},
                 {"op_flag", 10},
                 {"sync_id", 20},
                 {"cur_pkg_path", 0},
                 {"description", 0},
                 {"patch_ver", 0},
                 {"patch_id", 0},
                 {"effective_time", 0},
                 {"last_patch", 0},
                 {"patch_size", 0},
                 {"patch_type", 0},
                 {"patch_order", 0},
                 {"hotpatch_file", 0},
                 {"hotpatch_target", 0},
                 {"hotpatch_target_path", 0},
                 {"hotpatch_target_pkg_path", 0},
                 {"hotpatch_target_md5", 0},
                 {"hotpatch_target_strip_md5", 0},
                 {"Patch_name", 0},
                 {"", 0}};
    for (const auto &one : cases) {
        EXPECT_EQ(shown(cmpnt_show_db_field_value, {{one.column, text.c_str()}}),
                  std::string(one.width, 'x') + "\n")
            << one.column;
        EXPECT_EQ(shown(cmpnt_show_db_field_value, {{one.column, "short"}}),
                  (one.width == 0 ? "" : in(one.width, "short")) + "\n")
            << one.column;
    }
}

TEST_F(Display, StateViewHasAWidthForEachColumn) {
    const std::string text(50, 'x');
    const struct {
        const char *column;
        size_t width;
    } cases[] = {{"package_name", 25},  {"base_version", 20},   {"current_version", 20},
                 {"package_state", 20}, {"package_is_new", 20}, {"upgrade_count", 20},
                 {"patch_name", 36},    {"pkg_name", 25},       {"cur_version", 15},
                 {"last_version", 0},   {"card_id", 0},         {"cur_flag", 0},
                 {"op_flag", 0},        {"sync_id", 0},         {"sync_flag", 0},
                 {"cur_pkg_path", 0},   {"description", 0}};
    for (const auto &one : cases) {
        EXPECT_EQ(shown(cmpnt_show_state_field_value, {{one.column, text.c_str()}}),
                  std::string(one.width, 'x') + "\n")
            << one.column;
        EXPECT_EQ(shown(cmpnt_show_state_field_value, {{one.column, "short"}}),
                  (one.width == 0 ? "" : in(one.width, "short")) + "\n")
            << one.column;
    }
}

TEST_F(Display, StatesAreShownAsWords) {
    EXPECT_EQ(shown(cmpnt_show_db_field_value, {{"pkg_state", "6"}}), in(12, "running") + "\n");
    EXPECT_EQ(shown(cmpnt_show_db_field_value, {{"pkg_state", "9"}}), "invalid_hp_a\n");
    EXPECT_EQ(shown(cmpnt_show_db_field_value, {{"pkg_state", "1"}}), "Install_read\n");
    EXPECT_EQ(shown(cmpnt_show_state_field_value, {{"pkg_state", "9"}}), "invalid_hp_acti\n");
    EXPECT_EQ(shown(cmpnt_show_state_field_value, {{"pkg_state", "4"}}), in(15, "active") + "\n");
    EXPECT_EQ(shown(cmpnt_show_db_field_value, {{"pkg_state", "15"}}), in(12, "Unknow") + "\n");
    EXPECT_EQ(shown(cmpnt_show_db_field_value, {{"package_state", "6"}}), in(20, "6") + "\n");
}

TEST_F(Display, SyncFlagsAreShownAsWords) {
    EXPECT_EQ(shown(cmpnt_show_db_field_value, {{"sync_flag", "0"}}), in(20, "Init") + "\n");
    EXPECT_EQ(shown(cmpnt_show_db_field_value, {{"sync_flag", "1"}}), in(20, "Finish") + "\n");
    EXPECT_TRUE(trace_messages().empty());
    EXPECT_EQ(shown(cmpnt_show_db_field_value, {{"sync_flag", "2"}}), in(20, "Unknow") + "\n");
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_conver_sync_flag_to_str", "sync_flag error: 2\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
}

TEST_F(Display, ANullValuePrintsNothing) {
    EXPECT_EQ(shown(cmpnt_show_db_field_value, {{"package_name", "n"},
                                                {"current_version", nullptr},
                                                {"base_version", "1"},
                                                {"pkg_state", nullptr},
                                                {"sync_flag", nullptr}}),
              in(25, "n") + in(20, "1") + "\n");
    EXPECT_EQ(shown(cmpnt_show_state_field_value, {{"patch_name", nullptr}}), "\n");
}

TEST_F(Display, ARowWithoutColumnsIsAnEmptyLine) {
    EXPECT_EQ(shown(cmpnt_show_db_field_value, {}), "\n");
    EXPECT_EQ(shown(cmpnt_show_state_field_value, {}), "\n");
}

TEST_F(Display, AValueIsNoFormat) {
    EXPECT_EQ(shown(cmpnt_show_db_field_value, {{"patch_name", "%s%n%d"}}),
              in(32, "%s%n%d") + "\n");
}

TEST_F(Display, TheHeaderComesWithTheFirstRow) {
    const Row first = {{"patch_name", "p"}, {"cur_pkg_path", "/p"}, {"pkg_state", nullptr}};
    const std::string header = in(32, "patch_name") + in(12, "pkg_state") + "\n";
    EXPECT_EQ(show(select_all_callback, counter, first), 0);
    EXPECT_EQ(platform.cli, header + in(32, "p") + "\n");
    EXPECT_EQ(counter, 1);
    EXPECT_EQ(show(select_all_callback, counter, first), 0);
    EXPECT_EQ(platform.cli, header + in(32, "p") + "\n" + in(32, "p") + "\n");
    EXPECT_EQ(counter, 1);
}

TEST_F(Display, AStateViewShowsItsStateAndTheHeaderForAnyRow) {
    const std::string header = in(36, "patch_name") + in(25, "pkg_name") + in(15, "cur_version") +
                               in(15, "pkg_state") + "\n";
    const struct {
        Callback callback;
        const char *shown_state;
        std::string word;
    } views[] = {{select_active_callback, "4", "active"},
                 {select_running_callback, "6", "running"}};
    for (const auto &view : views) {
        counter = 0;
        platform.cli.clear();
        const char *const other_states[] = {"0", "2", nullptr, "9", "10", "5", "64"};
        for (const char *state : other_states) {
            EXPECT_EQ(show(view.callback, counter,
                           {{"patch_name", "p"},
                            {"pkg_name", "k"},
                            {"cur_version", "1"},
                            {"last_version", "0"},
                            {"pkg_state", state}}),
                      0);
            EXPECT_EQ(platform.cli, header);
        }
        EXPECT_EQ(show(view.callback, counter,
                       {{"patch_name", "p"},
                        {"pkg_name", "k"},
                        {"cur_version", "1"},
                        {"last_version", "0"},
                        {"pkg_state", view.shown_state}}),
                  0);
        EXPECT_EQ(platform.cli,
                  header + in(36, "p") + in(25, "k") + in(15, "1") + in(15, view.word) + "\n");
    }
}

TEST_F(Display, ARowWithoutAStateIsInNoStateView) {
    EXPECT_EQ(
        show(select_active_callback, counter, {{"package_name", "n"}, {"package_state", "4"}}), 0);
    EXPECT_EQ(platform.cli, in(25, "package_name") + in(20, "package_state") + "\n");
}

TEST_F(Display, RefusesToWorkWithoutItsCounterOrRow) {
    char *names[] = {nullptr};
    char *values[] = {nullptr};
    for (Callback callback :
         {select_all_callback, select_active_callback, select_running_callback}) {
        EXPECT_EQ(callback(nullptr, 1, values, names), -1);
        EXPECT_EQ(callback(&counter, 1, nullptr, names), -1);
        EXPECT_EQ(callback(&counter, 1, values, nullptr), -1);
    }
    cmpnt_show_db_field_value(1, nullptr, nullptr);
    cmpnt_show_state_field_value(1, nullptr, nullptr);
    EXPECT_EQ(platform.cli, "");
    EXPECT_EQ(select_all_callback(&counter, 1, values, names), 0);  // a column without a name
    EXPECT_EQ(platform.cli, "\n\n");
}

class DisplayOfTables : public Display {
protected:
    void SetUp() override {
        Display::SetUp();
        create_main_tables();
    }
};

TEST_F(DisplayOfTables, AnEmptyTablePrintsNothing) {
    for (int32_t table : {1, 2, 3, 4}) {
        for (int32_t mode : {0, 1, 2}) {
            EXPECT_EQ(traverse_pkg_info_table(table, mode, 0, CMPNT_DB_MAIN), 0);
        }
    }
    EXPECT_EQ(platform.cli, "");
}

TEST_F(DisplayOfTables, EachSelectHasItsHeader) {
    sql(main_db, "insert into server_table values(7, 1), (8, 0)");
    const std::string table = in(20, "sync_id") + in(20, "sync_flag") + "\n" + in(20, "7") +
                              in(20, "Finish") + "\n" + in(20, "8") + in(20, "Init") + "\n";
    EXPECT_EQ(traverse_pkg_info_table(CMPNT_SERVER_TABLE, 0, 0, CMPNT_DB_MAIN), 0);
    EXPECT_EQ(platform.cli, table);
    EXPECT_EQ(traverse_pkg_info_table(CMPNT_SERVER_TABLE, 0, 0, CMPNT_DB_MAIN), 0);
    EXPECT_EQ(platform.cli, table + table);
}

TEST_F(DisplayOfTables, ShowAnUpgradeTable) {
    sql(main_db,
        "insert into pkg_upgrade_table(patch_name, pkg_name, cur_version, last_version, "
        "pkg_state, card_id, cur_flag, op_flag) values"
        "('0123456789012345678901234567890123456789', 'kernel-and-modules', '1', '0', 4, 1, 2, 3),"
        "('p', 'k', '2', NULL, 6, 1, 2, 3)");
    EXPECT_EQ(traverse_pkg_info_table(CMPNT_PKG_UPGRADE_TABLE, 0, 0, CMPNT_DB_MAIN), 0);
    const std::string flags = in(10, "1") + in(10, "2") + in(10, "3") + "\n";
    EXPECT_EQ(platform.cli, in(32, "patch_name") + in(15, "pkg_name") + in(14, "cur_version") +
                                in(14, "last_version") + in(12, "pkg_state") + in(10, "card_id") +
                                in(10, "cur_flag") + in(10, "op_flag") + "\n" +
                                "01234567890123456789012345678901" + "kernel-and-modu" +
                                in(14, "1") + in(14, "0") + in(12, "active") + flags +  //
                                in(32, "p") + in(15, "k") + in(14, "2") + in(12, "running") +
                                flags);
    platform.cli.clear();
    EXPECT_EQ(traverse_pkg_info_table(CMPNT_PKG_UPGRADE_TABLE, 1, 0, CMPNT_DB_MAIN), 0);
    EXPECT_EQ(platform.cli,
              in(36, "patch_name") + in(25, "pkg_name") + in(15, "cur_version") +
                  in(15, "pkg_state") + "\n" + "012345678901234567890123456789012345" +
                  in(25, "kernel-and-modules") + in(15, "1") + in(15, "active") + "\n");
}
