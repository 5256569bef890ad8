#include <fcntl.h>
#include <string.h>
#include <sys/stat.h>

#include "tests/support/child.hh"
#include "tests/support/device_test.hh"
#include "tests/support/sqlite.hh"

namespace {

constexpr char lock_path[] = "/tmp/.cmpnt_db_lock";
constexpr int a_while = 50;  // milliseconds in which a process that need not wait would be through

// Whether another process holds the lock against a reader at this byte.
bool is_locked_at(off_t start) {
    struct flock probe = {};
    probe.l_type = F_RDLCK;
    probe.l_whence = SEEK_SET;
    probe.l_start = start;
    probe.l_len = 1;
    const int fd = open(lock_path, O_RDWR);
    EXPECT_EQ(fcntl(fd, F_GETLK, &probe), 0);
    close(fd);
    return probe.l_type == F_WRLCK;
}

// Takes the lock, and says so; gives it back when told to.
int hold_lock(Child &self) {
    const int fd = cmpnt_open_db_flock();
    self.say();
    self.wait_for_word();
    return cmpnt_close(fd);
}

// Waits for the lock, and says so.
int wait_for_lock(Child &self) {
    const int fd = cmpnt_open_db_flock();
    self.say();
    return cmpnt_close(fd);
}

}  // namespace

class Lock : public DeviceTest {};

TEST_F(Lock, IsAWriteLockOnTheWholeFile) {
    Child holder(hold_lock);
    ASSERT_TRUE(holder.says());
    EXPECT_TRUE(is_locked_at(0));
    EXPECT_TRUE(is_locked_at(0x7fffffff));
    holder.tell();
    EXPECT_EQ(holder.wait(), 0);
    EXPECT_FALSE(is_locked_at(0));
    EXPECT_FALSE(is_locked_at(0x7fffffff));
}

TEST_F(Lock, FileStaysAndHasModeLessUmask) {
    const mode_t mask = umask(022);
    cmpnt_close(cmpnt_open_db_flock());
    umask(mask);
    EXPECT_EQ(mode_of(lock_path), 0755);
}

TEST_F(Lock, DoesNotFollowTheTemporaryDirectory) {
    setenv("TMPDIR", "/opt", 1);
    cmpnt_close(cmpnt_open_db_flock());
    EXPECT_TRUE(exists(lock_path));
    EXPECT_TRUE(names_in("/opt").empty());
}

TEST_F(Lock, IsWaitedForUntilItsHolderClosesIt) {
    const int fd = cmpnt_open_db_flock();
    Child waiter(wait_for_lock);
    EXPECT_FALSE(waiter.says(a_while));
    cmpnt_close(fd);
    EXPECT_TRUE(waiter.says());
    EXPECT_EQ(waiter.wait(), 0);
}

TEST_F(Lock, IsFreeAgainWhenItsHolderIsKilled) {
    Child holder(hold_lock);
    ASSERT_TRUE(holder.says());
    Child waiter(wait_for_lock);
    EXPECT_FALSE(waiter.says(a_while));
    holder.kill();
    EXPECT_TRUE(waiter.says());
}

TEST_F(Lock, IsWaitedForByEveryDatabaseCall) {
    make_directories("/var/lib/opkg");
    static const std::vector<int (*)()> calls = {
        [] { return cmpnt_create_pkg_table(CMPNT_SERVER_TABLE, CMPNT_DB_MAIN); },
        [] { return cmpnt_table_is_exist(CMPNT_SERVER_TABLE, CMPNT_DB_MAIN) - 1; },
        [] {
            cmpnt_db_request request = {};
            request.table = CMPNT_SERVER_TABLE;
            return cmpnt_operate_pkg_database(&request, 1);
        },
        [] { return traverse_pkg_info_table(CMPNT_SERVER_TABLE, 4, 0, CMPNT_DB_MAIN); },
    };
    for (auto call : calls) {
        const int fd = cmpnt_open_db_flock();
        Child caller([call](Child &self) {
            const int result = call();
            self.say();
            return result;
        });
        EXPECT_FALSE(caller.says(a_while));
        cmpnt_close(fd);
        EXPECT_TRUE(caller.says());
        EXPECT_EQ(caller.wait(), 0);
    }
}

TEST_F(Lock, WaitGoesOnAfterASignal) {
    fault::fail("fcntl64", 1, EINTR, 3);
    const int fd = cmpnt_open_db_flock();
    EXPECT_GE(fd, 0);
    EXPECT_EQ(fault::calls("fcntl64"), 4);
    EXPECT_TRUE(trace_messages().empty());
    cmpnt_close(fd);
}

TEST_F(Lock, SaysWhyItsFileCannotBeOpened) {
    make_directories(lock_path);
    EXPECT_EQ(cmpnt_open_db_flock(), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_open_db_flock",
                       std::string("open flock fail, error(") + strerror(EISDIR) + ").\n"));
}

TEST_F(Lock, SaysWhyItIsNotGrantedAndClosesItsFile) {
    const int before = open_descriptors();
    fault::fail("fcntl64", 1, ENOLCK);
    EXPECT_EQ(cmpnt_open_db_flock(), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_open_db_flock",
                       std::string("open flock name(/tmp/.cmpnt_db_lock) fail, error(") +
                           strerror(ENOLCK) + ").\n"));
    EXPECT_EQ(open_descriptors(), before);
}

// A command run saves, replaces and closes the standard descriptors: a lock on one would be lost.
TEST_F(Lock, IsNeverAStandardDescriptor) {
    Child child([](Child &) {
        close(0);
        close(1);
        close(2);
        const int fd = cmpnt_open_db_flock();
        const bool standard_ones_are_free = fcntl(0, F_GETFD) == -1 && fcntl(1, F_GETFD) == -1;
        return fd > 2 && standard_ones_are_free && (fcntl(fd, F_GETFD) & FD_CLOEXEC) != 0 ? 0 : 1;
    });
    EXPECT_EQ(child.wait(), 0);
}

TEST_F(Lock, SaysWhenNoOtherDescriptorCanBeHad) {
    Child child([](Child &) {
        close(0);
        fault::fail("fcntl64", 1, EMFILE);
        return cmpnt_open_db_flock() == -1 && open("/dev/null", O_RDONLY) == 0 ? 0 : 1;
    });
    EXPECT_EQ(child.wait(), 0);
    EXPECT_EQ(traced("error", "cmpnt_open_db_flock",
                     std::string("open flock fail, error(") + strerror(EMFILE) + ").\n"),
              1);
}

TEST_F(Lock, SurvivesTheCopyToTheBackupWithStandardOutputClosed) {
    make_directories("/var/lib/opkg");
    make_directories("/data/cmpnt/opkg");
    g_cmpnt_dbg_level = 0;  // so that the copy's output is redirected
    cmpnt_create_pkg_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_DB_MAIN);
    Child child([](Child &) {
        close(1);
        close(2);
        const int fd = cmpnt_open_db_flock();
        const int result = cmpnt_backup_sqlite_db_to_data();
        Child prober([](Child &) { return is_locked_at(0) ? 0 : 1; });
        const int lost = prober.wait();
        cmpnt_close(fd);
        return result == 0 && lost == 0 ? 0 : 1;
    });
    EXPECT_EQ(child.wait(), 0);
}

// The journal of the write that was going on is rolled back by the next call.
TEST_F(Lock, KilledWriterLeavesTheMainFileReadable) {
    make_directories("/var/lib/opkg");
    ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_SERVER_TABLE, CMPNT_DB_MAIN), 0);
    sql(main_db, "insert into server_table values(1, 1)");
    Child writer([](Child &self) {
        cmpnt_open_db_flock();
        Connection connection(main_db);
        connection.run("pragma cache_size = 1");
        connection.run("begin");
        for (int i = 0; i < 20; i++) {
            connection.run("insert into server_table select sync_id + 1, 0 from server_table");
            if (size_of(main_db) > 40960) {
                break;  // half-written pages are in the file
            }
        }
        self.say();
        self.wait_for_word();
        return 0;
    });
    ASSERT_TRUE(writer.says());
    EXPECT_TRUE(exists(main_db + "-journal"));
    writer.kill();
    cmpnt_db_request request = {};
    request.table = CMPNT_SERVER_TABLE;
    request.cmd = 21;
    request.sync_id = 1;
    request.sync_flag = 2;
    EXPECT_EQ(cmpnt_operate_pkg_database(&request, 21), 0);
    EXPECT_EQ(sql(main_db, "select * from server_table"), (std::vector<SqlRow>{{"1", "2"}}));
    EXPECT_EQ(sql(main_db, "pragma integrity_check"), (std::vector<SqlRow>{{"ok"}}));
}
