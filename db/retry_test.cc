#include "db/write.hh"
#include "tests/support/child.hh"
#include "tests/support/device_test.hh"
#include "tests/support/sqlite.hh"

namespace {

constexpr char path[] = "/tmp/some.db3";
constexpr char statement[] = "update t set a = 2";
const std::string locked =
    "sqlite error: database is locked, table(" + std::string(statement) + ")\n";
const std::string gave_up = "cmpnt_sqlite3_exec fail\n";

Connection *holder = nullptr;
int messages_until_release = 0;

// The platform's log printer lets the other connection end in the middle of the retries.
void release_after_some_messages() {
    if (--messages_until_release == 0) {
        holder->run("rollback");
    }
}

}  // namespace

class Retry : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        fault::skip_sleeps();
        connection.run("create table t(a)");
        connection.run("insert into t values(1)");
        holder = &other;
    }

    Connection connection{path}, other{path};
};

TEST_F(Retry, IsNotNeededForAFreeFile) {
    EXPECT_EQ(cmpnt_sqlite3_exec(connection.db(), statement), 0);
    EXPECT_EQ(connection.run("select a from t"), (std::vector<SqlRow>{{"2"}}));
    EXPECT_EQ(fault::calls("sqlite3_exec"), 1);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Retry, TriesALockedFileSixTimesASecondApart) {
    other.run("begin immediate");
    EXPECT_EQ(cmpnt_sqlite3_exec(connection.db(), statement), -1);
    EXPECT_EQ(fault::calls("sqlite3_exec"), 6);
    EXPECT_EQ(fault::calls("nanosleep"), 5);
    EXPECT_EQ(fault::slept(), 5);
    EXPECT_EQ(traced("error", "cmpnt_sqlite3_exec", locked), 6);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_sqlite3_exec", locked));
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_sqlite3_exec", gave_up));
    EXPECT_EQ(trace_lines().size(), 7u);
    EXPECT_EQ(trace_lines().back().message, gave_up);
}

TEST_F(Retry, EndsWhenTheFileIsFree) {
    for (int failures = 1; failures <= 5; failures++) {
        forget_log();
        other.run("begin immediate");
        messages_until_release = failures;
        platform.on_syslog = release_after_some_messages;
        EXPECT_EQ(cmpnt_sqlite3_exec(connection.db(), statement), 0) << failures;
        platform.on_syslog = nullptr;
        EXPECT_EQ(traced("error", "cmpnt_sqlite3_exec", locked), failures);
        EXPECT_EQ(trace_lines().size(), static_cast<size_t>(failures));
    }
}

TEST_F(Retry, DoesNotComeForOtherErrors) {
    EXPECT_EQ(cmpnt_sqlite3_exec(connection.db(), "update nowhere set a = 1"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_sqlite3_exec",
                       "sqlite error: no such table: nowhere, table(update nowhere set a = 1)\n"));
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_sqlite3_exec", gave_up));
    EXPECT_EQ(trace_lines().size(), 2u);
    EXPECT_EQ(fault::calls("nanosleep"), 0);
}

TEST_F(Retry, DoesNotComeForAnErrorWithoutWords) {
    fault::fail("sqlite3_exec", 1, 0);
    EXPECT_EQ(cmpnt_sqlite3_exec(connection.db(), statement), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_sqlite3_exec",
                       "sqlite error: (null), table(update t set a = 2)\n"));
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_sqlite3_exec", gave_up));
    EXPECT_EQ(fault::calls("sqlite3_exec"), 1);
    EXPECT_EQ(fault::calls("nanosleep"), 0);
}

TEST_F(Retry, GoesByTheWordsEvenOfAnotherError) {
    EXPECT_EQ(cmpnt_sqlite3_exec(connection.db(), "update \"database is locked\" set a = 1"), -1);
    EXPECT_EQ(fault::calls("sqlite3_exec"), 6);
}

TEST_F(Retry, IsMetByAnotherProcessToo) {
    Child child([](Child &self) {
        Connection own(path);
        own.run("begin immediate");
        self.say();
        self.wait_for_word();
        return 0;
    });
    ASSERT_TRUE(child.says());
    EXPECT_EQ(cmpnt_sqlite3_exec(connection.db(), statement), -1);
    EXPECT_EQ(fault::calls("nanosleep"), 5);
    child.kill();
    EXPECT_EQ(cmpnt_sqlite3_exec(connection.db(), statement), 0);
}
