#include "db/statement.hh"

#include "tests/support/device_test.hh"
#include "tests/support/sqlite.hh"

class Statement : public DeviceTest {
protected:
    Connection connection{"/tmp/some.db3"};
};

TEST_F(Statement, RunsWithARowCallback) {
    connection.run("create table t(a)");
    connection.run("insert into t values(1), (2)");
    int rows = 0;
    const sqlite3_callback count = [](void *context, int, char **, char **) {
        ++*static_cast<int *>(context);
        return 0;
    };
    EXPECT_EQ(run_statement(connection.db(), "select * from t", "f", count, &rows), 0);
    EXPECT_EQ(rows, 2);
}

TEST_F(Statement, SucceedsWhenEmpty) {
    EXPECT_EQ(run_statement(connection.db(), "", "f"), 0);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Statement, ReportsSqlitesWordsInTheFunctionsName) {
    EXPECT_EQ(run_statement(connection.db(), "select * from nowhere", "some_function"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "some_function", "sqlite error: no such table: nowhere\n"));
}

TEST_F(Statement, ReportsAnErrorWithoutWords) {
    fault::fail("sqlite3_exec", 1, 0);
    EXPECT_EQ(run_statement(connection.db(), "select 1", "some_function"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "some_function", "sqlite error: (null)\n"));
}

TEST_F(Statement, IsNotTriedAgain) {
    Connection other("/tmp/some.db3");
    other.run("begin exclusive");
    EXPECT_EQ(run_statement(connection.db(), "create table t(a)", "some_function"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "some_function", "sqlite error: database is locked\n"));
    EXPECT_EQ(fault::calls("sqlite3_exec"), 1);
    EXPECT_EQ(fault::calls("nanosleep"), 0);
}
