#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "p_utils.pb-c.h"
#include "platform/reference/reference_platform.h"
#include "tests/support/child.hh"
#include "tests/support/deadline.hh"
#include "tests/support/device_test.hh"

namespace {

const std::string folder = "/var/safe-verify/sm3";
const std::string list_file = folder + "/global-d-white-sm3.hash";
const std::string new_list_file = list_file + ".new";
const std::string client = "cmpnt_upgrade_c";

// As the library sends them.
constexpr int32_t add_status = 2;
constexpr int32_t delete_status = 3;

int32_t add(const std::string &path, const std::string &of = client) {
    return safe_verify_whitelist_update(path.c_str(), of.c_str(), add_status);
}

int32_t erase(const std::string &path, const std::string &of = client) {
    return safe_verify_whitelist_update(path.c_str(), of.c_str(), delete_status);
}

std::string list() { return read_file(list_file); }

class WhitelistServiceTest : public DeviceTest {
protected:
    void TearDown() override {
        EXPECT_FALSE(exists(new_list_file));
        reference_platform_set_system_log(nullptr);
        DeviceTest::TearDown();
    }
};

TEST_F(WhitelistServiceTest, AddsALineForEachEntry) {
    EXPECT_EQ(0, add("/usr/bin/a"));
    EXPECT_EQ(0, add("/usr/bin/b"));
    EXPECT_EQ(0, add("/usr/bin/a", "other"));
    EXPECT_EQ("/usr/bin/a,cmpnt_upgrade_c\n/usr/bin/b,cmpnt_upgrade_c\n/usr/bin/a,other\n", list());
}

TEST_F(WhitelistServiceTest, LetsEveryoneReadTheList) {
    const mode_t mask = umask(077);
    EXPECT_EQ(0, add("/usr/bin/a"));
    umask(mask);
    EXPECT_EQ(0644, mode_of(list_file));
}

TEST_F(WhitelistServiceTest, KeepsOneLineOfAnEntryThatIsAddedTwice) {
    EXPECT_EQ(0, add("/usr/bin/a"));
    EXPECT_EQ(0, add("/usr/bin/a"));
    EXPECT_EQ(0, safe_verify_whitelist_update("/usr/bin/a", client.c_str(), 0));
    EXPECT_EQ("/usr/bin/a,cmpnt_upgrade_c\n", list());
}

TEST_F(WhitelistServiceTest, TellsNamesApartThatBeginAlike) {
    EXPECT_EQ(0, add("/usr/bin/ab"));
    EXPECT_EQ(0, add("/usr/bin/a"));
    EXPECT_EQ(0, add("/usr/bin/a", client + "2"));
    EXPECT_EQ(0, erase("/usr/bin/a"));
    EXPECT_EQ("/usr/bin/ab,cmpnt_upgrade_c\n/usr/bin/a,cmpnt_upgrade_c2\n", list());
}

TEST_F(WhitelistServiceTest, DeletesTheClientsOwnEntryOnly) {
    write_file(list_file, "/bin/a,other\n/bin/a,cmpnt_upgrade_c\n/bin/b,cmpnt_upgrade_c\n");
    EXPECT_EQ(0, erase("/bin/a"));
    EXPECT_EQ("/bin/a,other\n/bin/b,cmpnt_upgrade_c\n", list());
    EXPECT_EQ(0, erase("/bin/b", "other"));
    EXPECT_EQ("/bin/a,other\n/bin/b,cmpnt_upgrade_c\n", list());
}

TEST_F(WhitelistServiceTest, DeletesEveryLineOfAnEntry) {
    write_file(list_file, "/bin/a,cmpnt_upgrade_c\n/bin/b,x\n/bin/a,cmpnt_upgrade_c,since,today");
    EXPECT_EQ(0, erase("/bin/a"));
    EXPECT_EQ("/bin/b,x\n", list());
    EXPECT_EQ(0, erase("/bin/b", "x"));
    EXPECT_EQ("", list());
    EXPECT_TRUE(exists(list_file));
}

TEST_F(WhitelistServiceTest, HasNothingToDeleteWithoutAnEntry) {
    EXPECT_EQ(0, erase("/bin/a"));
    EXPECT_FALSE(exists("/var/safe-verify"));
    make_directories(folder);
    EXPECT_EQ(0, erase("/bin/a"));
    EXPECT_FALSE(exists(list_file));
}

TEST_F(WhitelistServiceTest, LeavesTheFileAloneWhereNothingChanges) {
    write_file(list_file, "/bin/a,cmpnt_upgrade_c");
    EXPECT_EQ(0, add("/bin/a"));
    EXPECT_EQ(0, erase("/bin/b"));
    EXPECT_EQ(0, fault::calls("rename"));
    EXPECT_EQ("/bin/a,cmpnt_upgrade_c", list());
}

TEST_F(WhitelistServiceTest, KeepsLinesThatAreNoEntries) {
    const std::string odd = "\n# by hand\n/bin/a\n,\n , ,\n\n";
    write_file(list_file, odd + "/bin/a,cmpnt_upgrade_c\n");
    EXPECT_EQ(0, erase("/bin/a"));
    EXPECT_EQ(odd, list());
    EXPECT_EQ(0, add("/bin/a"));
    EXPECT_EQ(odd + "/bin/a,cmpnt_upgrade_c\n", list());
}

TEST_F(WhitelistServiceTest, EndsALastLineThatHasNoNewline) {
    write_file(list_file, "/bin/a,other");
    EXPECT_EQ(0, add("/bin/b"));
    EXPECT_EQ("/bin/a,other\n/bin/b,cmpnt_upgrade_c\n", list());
}

TEST_F(WhitelistServiceTest, KnowsAnEntryBetweenBlanksAndBeforeMoreFields) {
    for (const char *line : {" /bin/a , cmpnt_upgrade_c \r\n", "/bin/a,cmpnt_upgrade_c,more\n",
                             "\t/bin/a,\tcmpnt_upgrade_c,\n"}) {
        write_file(list_file, line);
        EXPECT_EQ(0, add("/bin/a"));
        EXPECT_EQ(line, list());
        EXPECT_EQ(0, erase("/bin/a"));
        EXPECT_EQ("", list()) << line;
    }
}

TEST_F(WhitelistServiceTest, RefusesAnUnknownStatus) {
    for (const int32_t status : {1, -1, 4, 100, INT_MIN, INT_MAX}) {
        EXPECT_EQ(-1, safe_verify_whitelist_update("/bin/a", "c", status)) << status;
    }
    EXPECT_FALSE(exists(folder));
}

TEST_F(WhitelistServiceTest, RefusesWhatALineCannotHold) {
    const std::string longest(1023 - 1 - client.size() - 1 - 1, 'p');  // "/", ",", newline
    const char *const bad[][2] = {{"", "c"},         {"bin/a", "c"},    {"/bin/a", ""},
                                  {"/bin/a,b", "c"}, {"/bin/a\n", "c"}, {"/bin/a", "c,d"},
                                  {"/bin/a", "\n"}};
    for (const auto &entry : bad) {
        for (const int32_t status : {add_status, delete_status}) {
            EXPECT_EQ(-1, safe_verify_whitelist_update(entry[0], entry[1], status)) << entry[0];
        }
    }
    EXPECT_EQ(-1, safe_verify_whitelist_update(nullptr, "c", add_status));
    EXPECT_EQ(-1, safe_verify_whitelist_update("/bin/a", nullptr, add_status));
    EXPECT_EQ(-1, add("/" + longest + "p"));
    EXPECT_FALSE(exists(list_file));
    EXPECT_EQ(0, add("/" + longest));
    EXPECT_EQ(1023u, list().size());
}

TEST_F(WhitelistServiceTest, IsWhatTheLibraryReads) {
    EXPECT_EQ(0, add("/bin/a"));
    EXPECT_EQ(0, add("/bin/b", "other"));
    EXPECT_EQ(1, file_exist_in_dynamic_whitelist("/bin/a", 1));
    EXPECT_EQ(1, file_exist_in_dynamic_whitelist("/bin/b", 0));
    EXPECT_EQ(0, file_exist_in_dynamic_whitelist("/bin/b", 1));
    EXPECT_EQ(0, erase("/bin/a"));
    EXPECT_EQ(0, file_exist_in_dynamic_whitelist("/bin/a", 0));
}

// --- whole or not at all ------------------------------------------------------

TEST_F(WhitelistServiceTest, WritesBesideSyncsAndRenames) {
    write_file(list_file, "/bin/a,x\n");
    const int reader = open(list_file.c_str(), O_RDONLY);
    ASSERT_EQ(0, add("/bin/b"));
    EXPECT_EQ("write fsync rename fsync", fault::order_of({"write", "fsync", "rename"}));
    // Who has the old list open reads the whole of it.
    char text[64] = {};
    EXPECT_EQ(9, read(reader, text, sizeof(text)));
    EXPECT_STREQ("/bin/a,x\n", text);
    close(reader);
}

TEST_F(WhitelistServiceTest, KeepsTheOldListWhenAStepFails) {
    const struct {
        const char *function;
        int call;
    } steps[] = {{"write", 1}, {"fsync", 1}, {"close", 1}, {"rename", 1}, {"read", 1}};
    write_file(list_file, "/bin/a,x\n");
    for (const auto &step : steps) {
        fault::reset();
        fault::fail(step.function, step.call, EIO);
        EXPECT_EQ(-1, add("/bin/b")) << step.function;
        EXPECT_EQ("/bin/a,x\n", list()) << step.function;
        EXPECT_FALSE(exists(new_list_file)) << step.function;
    }
    fault::reset();
    fault::fail("fsync", 2, EIO);  // the directory: the change may not outlive a power cut
    EXPECT_EQ(-1, add("/bin/b"));
}

TEST_F(WhitelistServiceTest, GoesOnAfterInterruptionsAndShortWrites) {
    fault::fail("write", 1, EINTR);
    fault::limit("write", 2, 3);
    EXPECT_EQ(0, add("/bin/a"));
    EXPECT_EQ("/bin/a,cmpnt_upgrade_c\n", list());
    EXPECT_EQ(3, fault::calls("write"));
}

TEST_F(WhitelistServiceTest, FailsWhereAFileOrADirectoryIsInTheWay) {
    write_file("/var/safe-verify", "");
    EXPECT_EQ(-1, add("/bin/a"));
    EXPECT_EQ(-1, erase("/bin/a"));
    remove_tree("/var/safe-verify");
    make_directories(list_file);
    EXPECT_EQ(-1, add("/bin/a"));
    EXPECT_EQ(-1, erase("/bin/a"));
}

TEST_F(WhitelistServiceTest, TakesNoNoticeOfWhatAKilledServiceLeft) {
    const Deadline deadline;
    make_directories(folder);
    write_file("/var/precious", "precious");
    ASSERT_EQ(0, symlink("/var/precious", new_list_file.c_str()));
    EXPECT_EQ(0, add("/bin/a"));
    EXPECT_EQ("precious", read_file("/var/precious"));
    mkfifo(new_list_file.c_str(), 0600);
    EXPECT_EQ(0, add("/bin/b"));
    write_file(new_list_file, "half a li");
    EXPECT_EQ(0, add("/bin/c"));
    EXPECT_EQ("/bin/a,cmpnt_upgrade_c\n/bin/b,cmpnt_upgrade_c\n/bin/c,cmpnt_upgrade_c\n", list());
}

TEST_F(WhitelistServiceTest, LeavesNoFileOpen) {
    const int before = open_descriptors();
    add("/bin/a");
    add("/bin/a");
    erase("/bin/a");
    fault::fail("write", 1, ENOSPC);
    add("/bin/b");
    EXPECT_EQ(before, open_descriptors());
}

// --- one at a time ------------------------------------------------------------

TEST_F(WhitelistServiceTest, WaitsForAnotherProcessAndLosesNothingOfIt) {
    make_directories(folder);
    const int directory = open(folder.c_str(), O_RDONLY | O_DIRECTORY);
    ASSERT_EQ(0, flock(directory, LOCK_EX));
    Child child([directory](Child &self) {
        close(directory);  // or the child would hold the lock as well
        self.say();
        add("/bin/child");
        self.say();
        return 0;
    });
    ASSERT_TRUE(child.says());
    EXPECT_FALSE(child.says(100));
    write_file(list_file, "/bin/parent,x\n");
    close(directory);
    EXPECT_TRUE(child.says());
    EXPECT_EQ("/bin/parent,x\n/bin/child,cmpnt_upgrade_c\n", list());
}

TEST_F(WhitelistServiceTest, KeepsTheEntriesOfManyProcesses) {
    constexpr int children = 4, entries = 25;
    std::vector<std::unique_ptr<Child>> processes;
    processes.reserve(children);
    for (int number = 0; number < children; number++) {
        processes.push_back(std::make_unique<Child>([number](Child &) {
            int failed = 0;
            for (int i = 0; i < entries; i++) {
                failed += add("/bin/" + std::to_string(number) + "-" + std::to_string(i)) != 0;
            }
            return failed;
        }));
    }
    for (const auto &process : processes) {
        EXPECT_EQ(0, process->wait());
    }
    const std::string all = list();
    EXPECT_EQ(children * entries, std::count(all.begin(), all.end(), '\n'));
}

// --- through the data store ---------------------------------------------------

int32_t publish(int32_t status, const char *path, const char *of, int32_t operation = 3) {
    static const ProtobufCMessageDescriptor *const kind = &p_utils__sv_whitelist_info__descriptor;
    PUtils__SvWhitelistInfo info = P_UTILS__SV_WHITELIST_INFO__INIT;
    EXPECT_STREQ("p_utils.sv_whitelist_info", kind->name);
    info.type = static_cast<PUtils__ChangeStatusE>(status);
    info.file_path = const_cast<char *>(path);
    info.client_name = const_cast<char *>(of);
    return vx_mom_set(1, operation, &info.base, nullptr, nullptr);
}

TEST_F(WhitelistServiceTest, AppliesARecordAsSoonAsItIsPublished) {
    EXPECT_EQ(0, publish(2, "/bin/a", "cmpnt_upgrade_c"));
    EXPECT_EQ(0, publish(0, "/bin/b", "other"));
    EXPECT_EQ("/bin/a,cmpnt_upgrade_c\n/bin/b,other\n", list());
    EXPECT_EQ(0, publish(3, "/bin/a", "cmpnt_upgrade_c"));
    EXPECT_EQ("/bin/b,other\n", list());
}

TEST_F(WhitelistServiceTest, AppliesNoRecordOfAnotherOperation) {
    EXPECT_EQ(-1, publish(2, "/bin/a", "c", 4));
    EXPECT_FALSE(exists(list_file));
}

TEST_F(WhitelistServiceTest, TellsTheSystemLogOfARecordThatItRefuses) {
    FILE *log = fopen("/tmp/system.log", "w");
    ASSERT_NE(nullptr, log);
    reference_platform_set_system_log(log);
    EXPECT_EQ(0, publish(1, "/bin/a", "c"));
    EXPECT_EQ(0, publish(2, "bin/a", "c"));
    EXPECT_EQ(0, publish(2, nullptr, nullptr));
    fclose(log);
    EXPECT_EQ(
        "SAFE_VERIFY/WHITELIST: record refused: /bin/a\n"
        "SAFE_VERIFY/WHITELIST: record refused: bin/a\n"
        "SAFE_VERIFY/WHITELIST: record refused: no path\n",
        read_file("/tmp/system.log"));
    EXPECT_FALSE(exists(list_file));
}

}  // namespace
