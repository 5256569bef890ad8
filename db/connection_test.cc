#include "db/connection.hh"

#include <fcntl.h>

#include "tests/support/child.hh"
#include "tests/support/device_test.hh"
#include "tests/support/sqlite.hh"

class ConnectionTest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        make_directories("/var/lib/opkg");
        make_directories("/data/cmpnt/opkg");
        make_directories("/tmp/opkg/server");
    }
    void TearDown() override {
        sqlite3_close(db);
        DeviceTest::TearDown();
    }

    sqlite3 *db = nullptr;
    const std::string cannot_open = "Can't open database: unable to open database file\n";
};

TEST_F(ConnectionTest, SelectorsNameTheFiles) {
    const struct {
        int32_t db_type;
        std::string path;
    } cases[] = {{0, main_db},      {1, server_db},       {2, backup_db},
                 {3, auto_sync_db}, {4, main_db},         {7, main_db},
                 {-1, main_db},     {INT32_MIN, main_db}, {INT32_MAX, main_db}};
    for (const auto &one : cases) {
        sqlite3 *opened = nullptr;
        ASSERT_EQ(cmpnt_open_sqlite(&opened, one.db_type), 0) << one.db_type;
        EXPECT_EQ(sqlite3_db_filename(opened, "main"), one.path) << one.db_type;
        sqlite3_close(opened);
        char buffer[CMPNT_PATH_SIZE];
        EXPECT_EQ(database_path(one.db_type, buffer), one.path) << one.db_type;
    }
}

TEST_F(ConnectionTest, AMissingFileIsMadeEmpty) {
    ASSERT_EQ(open_sqlite(&db, main_db.c_str()), 0);
    EXPECT_EQ(size_of(main_db), 0);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(ConnectionTest, TheServerFileFollowsTheTemporaryDirectory) {
    setenv("TMPDIR", "/opt", 1);
    make_directories("/opt/opkg/server");
    ASSERT_EQ(open_server_sqlite(&db), 0);
    EXPECT_STREQ(sqlite3_db_filename(db, "main"), "/opt/opkg/server/.cmpnt_server.db3");
    EXPECT_TRUE(exists("/opt/opkg/server/.cmpnt_server.db3"));
}

TEST_F(ConnectionTest, RefusesNull) {
    EXPECT_EQ(open_sqlite(nullptr, main_db.c_str()), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "open_sqlite", "param is null\n"));
    forget_log();
    EXPECT_EQ(open_sqlite(&db, nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "open_sqlite", "param is null\n"));
    EXPECT_EQ(open_server_sqlite(nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "open_server_sqlite", "param is null\n"));
    EXPECT_EQ(cmpnt_open_sqlite(nullptr, 0), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_open_sqlite", "param is null\n"));
}

TEST_F(ConnectionTest, AFailedOpenLeavesNoHandleAndIsSaidByEachCaller) {
    remove_tree("/var/lib/opkg");
    db = reinterpret_cast<sqlite3 *>(this);
    EXPECT_EQ(cmpnt_open_sqlite(&db, CMPNT_DB_MAIN), -1);
    EXPECT_EQ(db, nullptr);
    EXPECT_EQ(fault::calls("sqlite3_close"), 1);  // the half-open one
    EXPECT_TRUE(logged("CMPNT_ERROR", "open_sqlite", cannot_open));
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_open_sqlite", "open_sqlite fail\n"));
    EXPECT_EQ(trace_lines().size(), 2u);
}

TEST_F(ConnectionTest, AFailedServerOpenIsSaidByEachCaller) {
    remove_tree("/tmp/opkg");
    db = reinterpret_cast<sqlite3 *>(this);
    EXPECT_EQ(cmpnt_open_sqlite(&db, CMPNT_DB_SERVER), -1);
    EXPECT_EQ(db, nullptr);
    EXPECT_TRUE(logged("CMPNT_ERROR", "open_sqlite", cannot_open));
    EXPECT_TRUE(logged("CMPNT_ERROR", "open_server_sqlite", "open_sqlite fail\n"));
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_open_sqlite", "open_server_sqlite fail\n"));
    EXPECT_EQ(trace_lines().size(), 3u);
}

TEST_F(ConnectionTest, ATemporaryDirectoryWithoutRoomForTheServerFileFails) {
    setenv("TMPDIR", ("/" + std::string(240, 't')).c_str(), 1);
    db = reinterpret_cast<sqlite3 *>(this);
    EXPECT_EQ(open_server_sqlite(&db), -1);
    EXPECT_EQ(db, nullptr);
    EXPECT_TRUE(logged("CMPNT_ERROR", "open_server_sqlite", "cmpnt_strcat_tmp_and_name fail\n"));
    char buffer[CMPNT_PATH_SIZE];
    EXPECT_EQ(database_path(CMPNT_DB_SERVER, buffer), nullptr);
}

TEST_F(ConnectionTest, SaysThatMemoryIsOutWhenSqliteHasNoHandle) {
    fault::fail("sqlite3_open", 1, ENOMEM);
    EXPECT_EQ(open_sqlite(&db, main_db.c_str()), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "open_sqlite", "Can't open database: out of memory\n"));
}

class Exchange : public ConnectionTest {
protected:
    // Asked by another process: here, closing the file would give the lock back.
    static bool lock_is_held() {
        Child prober([](Child &) {
            struct flock probe = {};
            probe.l_type = F_WRLCK;
            probe.l_whence = SEEK_SET;
            const int fd = open("/tmp/.cmpnt_db_lock", O_RDWR);
            return fd >= 0 && fcntl(fd, F_GETLK, &probe) == 0 && probe.l_type == F_WRLCK ? 1 : 0;
        });
        return prober.wait() == 1;
    }
};

TEST_F(Exchange, HoldsTheLockUntilItsScopeEndsAndTheFileUntilItIsClosed) {
    {
        DatabaseExchange exchange;
        ASSERT_EQ(exchange.begin(CMPNT_DB_MAIN, "some_function"), 0);
        EXPECT_NE(exchange.db(), nullptr);
        EXPECT_EQ(fault::calls("sqlite3_close"), 0);
        EXPECT_EQ(exchange.close(), SQLITE_OK);
        EXPECT_EQ(exchange.db(), nullptr);
        EXPECT_EQ(fault::calls("sqlite3_close"), 1);
        EXPECT_TRUE(lock_is_held());
    }
    EXPECT_FALSE(lock_is_held());
}

TEST_F(Exchange, ClosesWhatIsOpenWhenItsScopeEnds) {
    const int before = open_descriptors();
    {
        DatabaseExchange exchange;
        ASSERT_EQ(exchange.begin(CMPNT_DB_MAIN, "some_function"), 0);
        EXPECT_TRUE(lock_is_held());
    }
    EXPECT_EQ(fault::calls("sqlite3_close"), 1);
    EXPECT_FALSE(lock_is_held());
    EXPECT_EQ(open_descriptors(), before);
}

TEST_F(Exchange, TellsOfAFailedClose) {
    DatabaseExchange exchange;
    ASSERT_EQ(exchange.begin(CMPNT_DB_MAIN, "some_function"), 0);
    fault::fail("sqlite3_close", 1, 0);
    EXPECT_EQ(exchange.close(), SQLITE_BUSY);
}

TEST_F(Exchange, ReportsWithoutTheLockInTheFunctionsName) {
    fault::fail("open64", 1, EACCES);
    DatabaseExchange exchange;
    EXPECT_EQ(exchange.begin(CMPNT_DB_MAIN, "some_function"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "some_function", "open db flock fail.\n"));
    EXPECT_EQ(fault::calls("sqlite3_open"), 0);
}

TEST_F(Exchange, ReportsAFailedOpenInTheFunctionsNameAndUnlocks) {
    remove_tree("/var/lib/opkg");
    const int before = open_descriptors();
    {
        DatabaseExchange exchange;
        EXPECT_EQ(exchange.begin(CMPNT_DB_MAIN, "some_function"), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", "some_function", "cmpnt_open_sqlite fail ret(-1)\n"));
    }
    EXPECT_EQ(open_descriptors(), before);
}
