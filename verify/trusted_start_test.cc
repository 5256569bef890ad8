#include <errno.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "tests/support/deadline.hh"
#include "tests/support/device_test.hh"

namespace {

constexpr char run_name[] = "cmpnt_write_trusted_start_whitelist";
constexpr char add_name[] = "trusted_start_whitelist_add";
constexpr char delete_name[] = "trusted_start_whitelist_delete";
const std::string own = "cmpnt_upgrade_c";
const std::string saved_list = "/var/cache/opkg/cmpnt_safe_verify/.safe_verify_patch";
const std::string whitelist = "/var/safe-verify/sm3/global-d-white-sm3.hash";
const std::string run_failure = "trusted_start_whitelist_add fail\n";
const std::string request_failure = "cmpnt_dynamic_whitelist_operate fail.\n";
constexpr uintptr_t store = 7;
constexpr uintptr_t by_store = 0;
constexpr uintptr_t by_call = 1;

using Changes = std::vector<WhitelistChange>;
using Texts = std::vector<std::string>;

std::string current_list(const std::string &name) { return "/var/lib/opkg/info/" + name + ".list"; }
std::string former_list(const std::string &name) {
    return "/var/lib/opkg_bak/info/" + name + ".list";
}

// What the package has, and what it had before.
void install(const std::string &name, const std::string &now, const std::string &before) {
    write_file(current_list(name), now);
    write_file(former_list(name), before);
}

void save_patches(const std::string &names) { write_file(saved_list, names); }

int32_t run(uintptr_t channel = by_call) {
    return cmpnt_write_trusted_start_whitelist(store, channel, 3, 4);
}

std::string open_message(const std::string &path, int error) {
    return "open(" + path + ") failed, reason: " + strerror(error) + "\n";
}

WhitelistChange added(const std::string &path) { return {false, path, own, 2}; }
WhitelistChange deleted(const std::string &path) { return {false, path, own, 3}; }

// A service that does at once what its clients mean.
void change_whitelist(const WhitelistChange &change) {
    const std::string entry = change.file_path + "," + change.client_name + "\n";
    if (change.status == 2) {
        std::ofstream(whitelist, std::ios::app) << entry;
        return;
    }
    std::string content = read_file(whitelist);
    const size_t place = content.find(entry);
    if (place != std::string::npos) {
        write_file(whitelist, content.erase(place, entry.size()));
    }
}

}  // namespace

namespace testing::internal {
template <>
class UniversalPrinter<WhitelistChange> {
public:
    static void Print(const WhitelistChange &change, std::ostream *out) {
        *out << change.published << " " << change.file_path << " " << change.client_name << " "
             << change.status;
    }
};
}  // namespace testing::internal

class TrustedStart : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        platform.switch_result = 1;
        save_patches("pkg\n");
        install("pkg", "", "");
    }

    // The run fails, says so last, and uses the saved list up.
    void expect_failure(uintptr_t channel = by_call) {
        EXPECT_EQ(run(channel), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", run_name, run_failure));
        EXPECT_EQ(trace_messages().back(), std::string("error ") + run_name + ": " + run_failure);
        EXPECT_FALSE(exists(saved_list));
    }
};

TEST_F(TrustedStart, DoesNothingWhileVerificationIsOff) {
    platform.switch_result = 0;
    EXPECT_EQ(cmpnt_write_trusted_start_whitelist(0, 0, 0, 0), 0);
    EXPECT_TRUE(exists(saved_list));
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(TrustedStart, HandsItsArgumentsToTheSwitch) {
    platform.switch_result = 0;
    EXPECT_EQ(cmpnt_write_trusted_start_whitelist(UINTPTR_MAX, 2, 3, 4), 0);
    EXPECT_EQ(platform.switch_questions,
              (std::vector<std::vector<uintptr_t>>{{UINTPTR_MAX, 2, 3, 4}}));
}

TEST_F(TrustedStart, DoesNothingWithoutSavedPatches) {
    unlink(saved_list.c_str());
    EXPECT_EQ(cmpnt_write_trusted_start_whitelist(0, 0, 0, 0), 0);
    EXPECT_TRUE(logged("CMPNT_TRACE", run_name, "file (" + saved_list + ") is not exist.\n"));
    EXPECT_TRUE(platform.whitelist_changes.empty());
}

TEST_F(TrustedStart, KeepsASavedListThatItCannotOpen) {
    unlink(saved_list.c_str());
    ASSERT_EQ(symlink("nowhere", saved_list.c_str()), 0);
    EXPECT_EQ(run(), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", run_name, open_message(saved_list, ENOENT)));
    EXPECT_EQ(trace_messages().size(), 1u);
    EXPECT_TRUE(exists(saved_list));
}

TEST_F(TrustedStart, SendsWhatThePackageHasNoLonger) {
    install("pkg", "/bin/kept\n", "/bin/kept\n/bin/gone\n/sbin/gone\n");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(platform.whitelist_changes, Changes({added("/bin/gone"), added("/sbin/gone")}));
    EXPECT_FALSE(exists(saved_list));
    EXPECT_EQ(trace_messages(), Texts({std::string("trace ") + add_name + ": white_list_add(" +
                                           former_list("pkg") + ")\n",
                                       std::string("trace ") + delete_name +
                                           ": delete_white_list(" + current_list("pkg") + ")\n"}));
    EXPECT_TRUE(logged("CMPNT_TRACE", add_name, "white_list_add(" + former_list("pkg") + ")\n"));
    EXPECT_TRUE(
        logged("CMPNT_TRACE", delete_name, "delete_white_list(" + current_list("pkg") + ")\n"));
}

TEST_F(TrustedStart, SendsOnlyFilesInTrustedDirectories) {
    const Texts trusted = {"/sbin",          "/lib",           "/lib64",
                           "/bin",           "/usr/bin",       "/usr/lib",
                           "/usr/sbin",      "/usr/lib64",     "/usr/local/lib64",
                           "/usr/local/bin", "/usr/local/lib", "/usr/local/sbin",
                           "/etc/init.d",    "/etc/rc.d"};
    std::string before = "/opt/x\n/etc/x\nbin/x\n/usr/share/x\n /bin/x\n";
    Changes expected;
    for (const std::string &directory : trusted) {
        before += directory + "-any/x\n";
        expected.push_back(added(directory + "-any/x"));
    }
    install("pkg", "", before);
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(platform.whitelist_changes, expected);
}

TEST_F(TrustedStart, SendsNoDirectoriesAndNoLinksToThem) {
    make_directories("/tmp/folder");
    ASSERT_EQ(symlink("/tmp/folder", "/tmp/to_folder"), 0);
    write_file("/tmp/file", "");
    const std::string paths =
        "/usr/bin/../../tmp/folder\n/usr/bin/../../tmp/to_folder\n/usr/bin/../../tmp/file\n/usr/"
        "bin/../../tmp/missing\n";
    install("pkg", "", paths);
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(platform.whitelist_changes,
              Changes({added("/usr/bin/../../tmp/file"), added("/usr/bin/../../tmp/missing")}));

    platform.whitelist_changes.clear();
    install("pkg", paths, "");
    write_file(whitelist,
               "/usr/bin/../../tmp/folder," + own + "\n/usr/bin/../../tmp/file," + own + "\n");
    save_patches("pkg\n");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(platform.whitelist_changes, Changes({deleted("/usr/bin/../../tmp/file")}));
}

TEST_F(TrustedStart, SendsNothingThatIsOnTheWhitelistAlready) {
    install("pkg", "", "/bin/a\n/bin/b\n/bin/c\n");
    write_file(whitelist, "/bin/a,other\n/bin/b," + own + "\n");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(platform.whitelist_changes, Changes({added("/bin/c")}));
}

TEST_F(TrustedStart, ComparesWholeLinesWithTheCurrentList) {
    install("pkg", "/bin/aa\n/bin/b \n/bin/c", "/bin/a\n/bin/b\n/bin/c\n");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(platform.whitelist_changes,
              Changes({added("/bin/a"), added("/bin/b"), added("/bin/c")}));
}

TEST_F(TrustedStart, TakesOwnEntriesOffTheWhitelistForWhatThePackageHas) {
    install("pkg", "/bin/a\n/bin/b\n/bin/c\n/opt/d\n", "");
    write_file(whitelist,
               "/bin/a," + own + "\n/bin/b,other\n/opt/d," + own + "\n/bin/e," + own + "\n");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(platform.whitelist_changes, Changes({deleted("/bin/a")}));
    EXPECT_FALSE(exists(saved_list));
}

TEST_F(TrustedStart, GoesThroughThePatchesOneByOne) {
    install("one", "/bin/1\n", "/bin/1gone\n");
    install("two", "/bin/2\n", "/bin/2gone\n");
    write_file(whitelist, "/bin/1," + own + "\n/bin/2," + own + "\n");
    save_patches("two\none\n");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(platform.whitelist_changes, Changes({added("/bin/2gone"), deleted("/bin/2"),
                                                   added("/bin/1gone"), deleted("/bin/1")}));
}

TEST_F(TrustedStart, PublishesThroughTheDataStoreOnChannelZero) {
    install("pkg", "/bin/a\n", "/bin/gone\n");
    write_file(whitelist, "/bin/a," + own + "\n");
    EXPECT_EQ(run(by_store), 0);
    EXPECT_EQ(platform.whitelist_changes,
              Changes({{true, "/bin/gone", own, 2}, {true, "/bin/a", own, 3}}));
    for (const MomCall &call : platform.mom) {
        EXPECT_EQ(call.store, store);
    }
}

TEST_F(TrustedStart, CallsWithoutAStoreOnChannelOne) {
    install("pkg", "", "/bin/gone\n");
    EXPECT_EQ(cmpnt_write_trusted_start_whitelist(0, 1, 0, 0), 0);
    EXPECT_EQ(platform.whitelist_changes, Changes({added("/bin/gone")}));
}

TEST_F(TrustedStart, NeedsAStoreOrAChannelOnceThereIsAPatch) {
    EXPECT_EQ(cmpnt_write_trusted_start_whitelist(0, 0, 3, 4), -1);
    EXPECT_EQ(trace_messages(), Texts({std::string("error ") + run_name + ": param is null.\n",
                                       std::string("error ") + run_name + ": " + run_failure}));
    EXPECT_TRUE(logged("CMPNT_ERROR", run_name, "param is null.\n"));
    EXPECT_FALSE(exists(saved_list));
}

TEST_F(TrustedStart, NeedsNeitherForAListWithoutPatches) {
    for (const char *content : {"", "\n\n"}) {
        save_patches(content);
        EXPECT_EQ(cmpnt_write_trusted_start_whitelist(0, 0, 3, 4), 0);
        EXPECT_FALSE(exists(saved_list));
    }
    EXPECT_EQ(traced("trace", run_name, "buf len is 0, continue.\n"), 2);
    EXPECT_TRUE(logged("CMPNT_TRACE", run_name, "buf len is 0, continue.\n"));
}

TEST_F(TrustedStart, SkipsEmptyLinesAndSaysSoOfSavedPatchesAndFormerLists) {
    save_patches("\npkg\n");
    install("pkg", "\n/bin/a\n", "/bin/a\n\n\n/bin/gone\n");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(platform.whitelist_changes, Changes({added("/bin/gone")}));
    EXPECT_EQ(traced("trace", run_name, "buf len is 0, continue.\n"), 1);
    EXPECT_EQ(traced("trace", add_name, "buf len is 0, continue.\n"), 2);
    EXPECT_EQ(traced("trace", delete_name, "buf len is 0, continue.\n"), 0);
    EXPECT_TRUE(logged("CMPNT_TRACE", add_name, "buf len is 0, continue.\n"));
}

TEST_F(TrustedStart, CutsTheLastCharacterOfEachLine) {
    install("pk", "/bin/aX", "/bin/gone\r\n/bin/lastX");
    write_file(whitelist, "/bin/a," + own + "\n");
    save_patches("pkg");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(platform.whitelist_changes,
              Changes({added("/bin/gone\r"), added("/bin/last"), deleted("/bin/a")}));
}

TEST_F(TrustedStart, DeletesAlsoForAPatchThatIsNew) {
    unlink(former_list("pkg").c_str());
    write_file(current_list("pkg"), "/bin/a\n");
    write_file(whitelist, "/bin/a," + own + "\n");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(platform.whitelist_changes, Changes({deleted("/bin/a")}));
    EXPECT_TRUE(logged("CMPNT_TRACE", add_name, "white_list_add(" + former_list("pkg") + ")\n"));
}

TEST_F(TrustedStart, FailsWithAFormerListThatItCannotOpen) {
    unlink(former_list("pkg").c_str());
    ASSERT_EQ(symlink("nowhere", former_list("pkg").c_str()), 0);
    expect_failure();
    EXPECT_TRUE(logged("CMPNT_ERROR", add_name, open_message(former_list("pkg"), ENOENT)));
    EXPECT_EQ(traced("trace", delete_name, "delete_white_list(" + current_list("pkg") + ")\n"), 0);
}

TEST_F(TrustedStart, SendsAllAndThenFailsWithoutACurrentList) {
    install("pkg", "", "/bin/a\n/opt/x\n/bin/b\n");
    unlink(current_list("pkg").c_str());
    save_patches("pkg\nnext\n");
    install("next", "", "/bin/next\n");
    expect_failure();
    EXPECT_EQ(platform.whitelist_changes, Changes({added("/bin/a"), added("/bin/b")}));
    const std::string message = open_message(current_list("pkg"), ENOENT);
    EXPECT_TRUE(logged("CMPNT_ERROR", "file_exist_in_patch_list", message));
    EXPECT_EQ(traced("error", "file_exist_in_patch_list", message), 2);
    EXPECT_TRUE(logged("CMPNT_ERROR", delete_name, message));
}

TEST_F(TrustedStart, EndsAtTheFirstRequestThatFails) {
    install("pkg", "/bin/now\n", "/bin/a\n/bin/b\n");
    platform.whitelist_result = -1;
    expect_failure();
    EXPECT_EQ(platform.whitelist_changes, Changes({added("/bin/a")}));
    EXPECT_TRUE(logged("CMPNT_ERROR", add_name, request_failure));
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_dynamic_whitelist_operate",
                       "safe_verify_whitelist_update fail\n"));
}

TEST_F(TrustedStart, EndsAtTheFirstDeletionThatFails) {
    install("pkg", "/bin/a\n/bin/b\n", "");
    write_file(whitelist, "/bin/a," + own + "\n/bin/b," + own + "\n");
    platform.set_result = 1;
    expect_failure(by_store);
    EXPECT_EQ(platform.whitelist_changes, Changes({{true, "/bin/a", own, 3}}));
    EXPECT_TRUE(logged("CMPNT_ERROR", delete_name, request_failure));
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_dynamic_whitelist_operate", "vx_mom_set fail\n"));
}

TEST_F(TrustedStart, FailsOnOtherChannelsWhenThereIsSomethingToSend) {
    EXPECT_EQ(run(2), 0);
    save_patches("pkg\n");
    install("pkg", "", "/bin/gone\n");
    expect_failure(2);
    EXPECT_TRUE(logged("CMPNT_ERROR", add_name, request_failure));
    EXPECT_TRUE(platform.whitelist_changes.empty());
    EXPECT_EQ(traced("error", "cmpnt_dynamic_whitelist_operate", "vx_mom_set fail\n"), 0);
}

// The service may answer a request before the next question.
TEST_F(TrustedStart, SeesWhatItsOwnRequestsChanged) {
    platform.on_whitelist_change = change_whitelist;
    const std::string twice = "/bin/a\n/bin/b\n/bin/a\n/bin/b\n/bin/c\n/bin/a\n";
    install("one", "", twice);
    install("two", twice, "/bin/a\n/bin/b\n");
    write_file(whitelist, "");
    save_patches("one\ntwo\n");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(platform.whitelist_changes,
              Changes({added("/bin/a"), added("/bin/b"), added("/bin/c"), deleted("/bin/a"),
                       deleted("/bin/b"), deleted("/bin/c")}));
    EXPECT_EQ(read_file(whitelist), "");
}

TEST_F(TrustedStart, SendsOnceMoreWhatNobodyChanged) {
    install("pkg", "", "/bin/a\n/bin/b\n/bin/a\n");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(platform.whitelist_changes,
              Changes({added("/bin/a"), added("/bin/b"), added("/bin/a")}));
}

// A path that does not fit the request is cut silently, as is a name in a list's path.
TEST_F(TrustedStart, CutsWhatIsTooLong) {
    const std::string path = "/bin/" + std::string(300, 'x');
    install("pkg", "", path + "\n");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(platform.whitelist_changes, Changes({added(path.substr(0, 259))}));

    save_patches(std::string(1000, 'n') + "\n");
    expect_failure();
}

TEST_F(TrustedStart, ComplainsOfMalformedEntriesForEachQuestion) {
    install("pkg", "/bin/a\n/bin/b\n/bin/c\n/opt/d\n", "");
    write_file(whitelist, "malformed\n/bin/b," + own + "\nmalformed\n");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(platform.whitelist_changes, Changes({deleted("/bin/b")}));
    EXPECT_EQ(traced("error", "file_exist_in_dynamic_whitelist", "dynamic whitelist format err.\n"),
              5);
}

TEST_F(TrustedStart, UsesUpASavedListThatIsADirectory) {
    unlink(saved_list.c_str());
    make_directories(saved_list + "/folder");
    EXPECT_EQ(run(), 0);
    EXPECT_FALSE(exists(saved_list));
}

TEST_F(TrustedStart, DoesNotWaitForPipes) {
    const Deadline deadline;
    for (const std::string &path : {saved_list, former_list("pkg"), current_list("pkg")}) {
        save_patches("pkg\n");
        install("pkg", "/bin/now\n", "/bin/gone\n");
        write_file(whitelist, "");
        unlink(path.c_str());
        ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
        EXPECT_EQ(run(), 0) << path;
        EXPECT_FALSE(exists(saved_list));
        unlink(path.c_str());
    }
}

TEST_F(TrustedStart, LeavesNoDescriptorOpen) {
    const int descriptors = open_descriptors();
    install("pkg", "/bin/a\n", "/bin/gone\n");
    EXPECT_EQ(run(), 0);
    save_patches("pkg\nmissing\n");
    EXPECT_EQ(run(), -1);
    EXPECT_EQ(open_descriptors(), descriptors);
}

// The whitelist and the current list are read a fixed number of times, however many files there are.
TEST_F(TrustedStart, ReadsListsNotForEachFile) {
    std::string files;
    for (int i = 0; i < 500; i++) {
        files += "/bin/" + std::to_string(i) + "\n";
    }
    install("pkg", files, files);
    write_file(whitelist, "/bin/x," + own + "\n/bin/y,other\n");
    set_written_long_ago(whitelist);
    set_written_long_ago(current_list("pkg"));
    EXPECT_EQ(run(), 0);
    EXPECT_TRUE(platform.whitelist_changes.empty());
    EXPECT_LE(fault::calls("open64"), 10);  // two of them for each trace line
}
