#include <sqlite3.h>

#include "pkgfile/control_line.hh"
#include "tests/support/device_test.hh"

namespace {

int collect_row(void *rows, int columns, char **values, char **) {
    std::string row;
    for (int i = 0; i < columns; i++) {
        row += (i == 0 ? "" : "|") + std::string(values[i] == nullptr ? "NULL" : values[i]);
    }
    static_cast<std::vector<std::string> *>(rows)->push_back(row);
    return 0;
}

}  // namespace

class StatusRow : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        ASSERT_EQ(sqlite3_open(":memory:", &db), SQLITE_OK);
        ASSERT_EQ(sqlite3_exec(db, "create table t (a unique, b, c default 7, d, e, f)", nullptr,
                               nullptr, nullptr),
                  SQLITE_OK);
        ASSERT_EQ(sqlite3_prepare_v2(db, "insert into t values (?, ?, ?, ?, ?, ?)", -1, &statement,
                                     nullptr),
                  SQLITE_OK);
    }
    void TearDown() override {
        sqlite3_finalize(statement);
        sqlite3_close(db);
        DeviceTest::TearDown();
    }
    int32_t parse_file(const std::string &text, void *row) {
        write_file("/var/lib/opkg/status", text);
        cmpnt_file_param param;
        set_file_param(&param, CMPNT_PARSE_STATUS_TO_DB, 0, 0, 0);
        param.statement = row;
        return parse_pkg_info_from_file(&record, "/var/lib/opkg/status", &param);
    }
    std::vector<std::string> rows() {
        std::vector<std::string> found;
        sqlite3_exec(db, "select * from t order by rowid", collect_row, &found, nullptr);
        return found;
    }

    sqlite3 *db = nullptr;
    sqlite3_stmt *statement = nullptr;
    cmpnt_control_info record = {};
};

TEST_F(StatusRow, IsWrittenForEveryPackageOfAStatusFile) {
    EXPECT_EQ(parse_file("Package: foo\nVersion: 1.2\n\nPackage: it's\nVersion: 2\n\n", statement),
              0);
    EXPECT_EQ(rows(), (std::vector<std::string>{"foo|1.2|NULL|0|0|1", "it's|2|NULL|0|0|1"}));
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(StatusRow, NeedsABlankLineBehindTheParagraph) {
    EXPECT_EQ(parse_file("Package: foo\nVersion: 1\n\nPackage: bar\nVersion: 2\n", statement), 0);
    EXPECT_EQ(rows(), (std::vector<std::string>{"foo|1|NULL|0|0|1"}));
    EXPECT_STREQ(record.package, "bar");
}

TEST_F(StatusRow, IsNotWrittenWithoutAPackageName) {
    EXPECT_EQ(parse_file("\n\nVersion: 1\n\nPackage: foo\n\n", statement), 0);
    EXPECT_EQ(rows(), (std::vector<std::string>{"foo||NULL|0|0|1"}));
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(StatusRow, ThatCannotBeWrittenIsLeftOut) {
    EXPECT_EQ(parse_file("Package: foo\n\nPackage: foo\nVersion: 2\n\nPackage: bar\n\n", statement),
              0);
    EXPECT_EQ(rows(), (std::vector<std::string>{"foo||NULL|0|0|1", "bar||NULL|0|0|1"}));
}

TEST_F(StatusRow, KeepsItsTextsWhenTheRecordIsGone) {
    {
        cmpnt_control_info gone = {};
        strcpy(gone.package, "foo");
        strcpy(gone.version, "1.2");
        store_status_row(statement, gone);
        memset(&gone, 'x', sizeof(gone));
    }
    sqlite3_reset(statement);
    sqlite3_exec(db, "delete from t", nullptr, nullptr, nullptr);
    EXPECT_EQ(sqlite3_step(statement), SQLITE_DONE);
    EXPECT_EQ(rows(), (std::vector<std::string>{"foo|1.2|NULL|0|0|1"}));
}

TEST_F(StatusRow, NeedsAStatement) {
    EXPECT_EQ(parse_file("Package: foo\n\n", nullptr), 0);
    EXPECT_TRUE(rows().empty());
    EXPECT_TRUE(trace_messages().empty());
}
