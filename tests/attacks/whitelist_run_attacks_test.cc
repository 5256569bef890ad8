// The run that follows patches, with the real service and its file, on both channels.
#include <errno.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/reference/reference_platform.h"
#include "tests/attacks/attack_table.hh"
#include "tests/support/deadline.hh"

namespace {

const std::string saved_list = "/var/cache/opkg/cmpnt_safe_verify/.safe_verify_patch";
const std::string current_list = "/var/lib/opkg/info/hello.list";
const std::string former_list = "/var/lib/opkg_bak/info/hello.list";
constexpr uintptr_t store = 7, by_store = 0, by_call = 1;
constexpr size_t mebibyte = 1 << 20;

const std::string by_add = "trusted_start_whitelist_add: ";
const std::string by_delete = "trusted_start_whitelist_delete: ";
const Texts failed_run = {"cmpnt_write_trusted_start_whitelist: trusted_start_whitelist_add fail"};

std::string unopened(const std::string &path) {
    return "open(" + path + ") failed, reason: " + strerror(ENOENT);
}

std::string own(const std::string &path) { return path + ",cmpnt_upgrade_c\n"; }

// What is there, and what must come of it.
struct WhitelistRun {
    const char *name;
    std::string saved, former, current, whitelist;
    int32_t result;
    Texts errors;
    std::string new_whitelist;
};

class WhitelistRunAttacks : public AttackTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        write_file(switch_file, "");
        // The data store hands a record on to the service.
        platform.on_whitelist_change = [](const WhitelistChange &change) {
            EXPECT_TRUE(change.published);
            safe_verify_whitelist_update(change.file_path.c_str(), change.client_name.c_str(),
                                         change.status);
        };
    }

    void expect(const std::vector<WhitelistRun> &runs) {
        for (const WhitelistRun &run : runs) {
            for (uintptr_t channel : {by_store, by_call}) {
                SCOPED_TRACE(std::string(run.name) + ", channel " + std::to_string(channel));
                SetUp();
                write_file(saved_list, run.saved);
                write_file(former_list, run.former);
                write_file(current_list, run.current);
                write_file(dynamic_list, run.whitelist);
                expect_one(run, channel);
            }
        }
    }

private:
    static void expect_one(const WhitelistRun &run, uintptr_t channel) {
        const Snapshot before = look_at_device();
        const Deadline deadline;
        EXPECT_EQ(cmpnt_write_trusted_start_whitelist(store, channel, 3, 4), run.result);
        EXPECT_EQ(errors_said(), run.errors);
        EXPECT_EQ(read_file(dynamic_list), run.new_whitelist);
        Texts changed = {saved_list};
        if (run.new_whitelist != run.whitelist) {
            changed.push_back(dynamic_list);
        }
        EXPECT_EQ(changes_between(before, look_at_device()), changed);
    }
};

TEST_F(WhitelistRunAttacks, WithFileLists) {
    const std::string old = "/usr/bin/old\n";
    const std::string entry = own("/usr/bin/old");
    const std::string other = "/usr/bin/old,another\n";
    const std::string long_path = "/usr/bin/" + std::string(291, 'n');
    expect({
        {"a file that went", "hello\n", old, "", "", 0, {}, entry},
        {"a file that went and is entered", "hello\n", old, "", entry, 0, {}, entry},
        {"a file that went and another entered", "hello\n", old, "", other, 0, {}, other},
        {"a file that stays", "hello\n", old, old, "", 0, {}, ""},
        {"a file that is there and entered", "hello\n", "", old, entry, 0, {}, ""},
        {"a file that is there and another entered", "hello\n", "", old, other, 0, {}, other},
        {"a file that is there and both entered", "hello\n", "", old, other + entry, 0, {}, other},
        {"files elsewhere", "hello\n", "/opt/old\n/etc/passwd\nusr/bin/old\n", "", "", 0, {}, ""},
        {"a file that begins like a trusted one",
         "hello\n",
         "/library/old\n",
         "",
         "",
         0,
         {},
         own("/library/old")},
        {"a directory", "hello\n", "/usr/bin\n/usr/bin/\n", "", "", 0, {}, ""},
        {"blank lines", "hello\n", "\n\n" + old + "\n", "\n", "", 0, {}, entry},
        {"no newline", "hello\n", "/usr/bin/oldx", "", "", 0, {}, entry},
        {"a longer path now", "hello\n", old, "/usr/bin/older\n", "", 0, {}, entry},
        {"a way up",
         "hello\n",
         "/usr/bin/../../opt/canary\n",
         "",
         "",
         0,
         {},
         own("/usr/bin/../../opt/canary")},
        {"a blank and quotes",
         "hello\n",
         "/usr/bin/a b'\"\n",
         "",
         "",
         0,
         {},
         own("/usr/bin/a b'\"")},
        {"conversions", "hello\n", "/usr/bin/%s%n\n", "", "", 0, {}, own("/usr/bin/%s%n")},
        {"a zero byte first", "hello\n", std::string(1, '\0') + old, "", "", 0, {}, ""},
        {"more than a request has room for",
         "hello\n",
         long_path + "\n",
         "",
         "",
         0,
         {},
         own(long_path.substr(0, 259))},
        {"a mebibyte of letters",
         "hello\n",
         std::string(mebibyte, 'x') + "\n" + old,
         "",
         "",
         0,
         {},
         entry},
        {"the same twice", "hello\n", old + old, "", "", 0, {}, entry},
        {"odd lines of the whitelist", "hello\n", old, "", "\nx,\n", 0, {}, "\nx,\n" + entry},
    });
}

TEST_F(WhitelistRunAttacks, WithSavedPatches) {
    const std::string old = "/usr/bin/old\n";
    const std::string entry = own("/usr/bin/old");
    const auto no_list = [](const std::string &name) {
        return Texts{by_delete + unopened("/var/lib/opkg/info/" + name + ".list")} + failed_run;
    };
    // The lists that it names are read, wherever they lie.
    const std::string away = "../../../../var/lib/opkg/info/../../opkg_bak/info/hello";
    expect({
        {"none", "", old, "", "", 0, {}, ""},
        {"blank lines", "\n\nhello\n\n", old, "", "", 0, {}, entry},
        {"twice the same", "hello\nhello\n", old, "", "", 0, {}, entry},
        {"no newline", "hello", old, "", "", -1, no_list("hell"), ""},
        {"no newline, and a letter more", "hellox", old, "", "", 0, {}, entry},
        {"a carriage return", "hello\r\n", old, "", "", -1, no_list("hello\r"), ""},
        {"a blank behind it", "hello \n", old, "", "", -1, no_list("hello "), ""},
        {"a zero byte", std::string(1, '\0') + "hello\n", old, "", "", 0, {}, ""},
        {"a package without lists", "nothing\nhello\n", old, "", "", -1, no_list("nothing"), ""},
        {"a package without lists, behind a good one", "hello\nnothing\n", old, "", "", -1,
         no_list("nothing"), entry},
        {"a way up", "../../../../var/lib/opkg/info/hello\n", old, old, entry, 0, {}, ""},
        {"a way up to another list", away + "\n", old, "", entry, 0, {}, ""},
        {"a command", "$(touch /opt/touched)\n", old, "", "", -1, no_list("$(touch /opt/touched)"),
         ""},
        {"a mebibyte", std::string(mebibyte, 'n') + "\n", old, "", "", -1,
         Texts{by_delete + unopened("/var/lib/opkg/info/" + std::string(240, 'n'))} + failed_run,
         ""},
    });
}

TEST_F(WhitelistRunAttacks, ThatFailHalfWay) {
    const auto start = [this](const std::string &saved) {
        SetUp();
        write_file(saved_list, saved);
        write_file(former_list, "/usr/bin/a\n/usr/bin/b,c\n/usr/bin/d\n");
        write_file(current_list, "");
        write_file(dynamic_list, "");
    };
    const Texts request_failed = {by_add + "cmpnt_dynamic_whitelist_operate fail."};

    start("hello\n");  // the service refuses a comma, and tells whoever called it
    EXPECT_EQ(cmpnt_write_trusted_start_whitelist(store, by_call, 0, 0), -1);
    EXPECT_EQ(errors_said(),
              Texts{"cmpnt_dynamic_whitelist_operate: safe_verify_whitelist_update fail"} +
                  request_failed + failed_run);
    EXPECT_EQ(read_file(dynamic_list), own("/usr/bin/a"));
    EXPECT_FALSE(exists(saved_list));

    start("hello\n");  // but not who published it
    EXPECT_EQ(cmpnt_write_trusted_start_whitelist(store, by_store, 0, 0), 0);
    EXPECT_EQ(errors_said(), Texts{});
    EXPECT_EQ(read_file(dynamic_list), own("/usr/bin/a") + own("/usr/bin/d"));

    start("hello\n");
    platform.set_result = 1;
    EXPECT_EQ(cmpnt_write_trusted_start_whitelist(store, by_store, 0, 0), -1);
    EXPECT_EQ(errors_said(), Texts{"cmpnt_dynamic_whitelist_operate: vx_mom_set fail"} +
                                 request_failed + failed_run);

    start("hello\n");  // a channel that is none
    EXPECT_EQ(cmpnt_write_trusted_start_whitelist(store, 2, 0, 0), -1);
    EXPECT_EQ(errors_said(), request_failed + failed_run);
    EXPECT_EQ(read_file(dynamic_list), "");

    start("hello\n");  // no store for its channel
    EXPECT_EQ(cmpnt_write_trusted_start_whitelist(0, by_store, 0, 0), -1);
    EXPECT_EQ(errors_said(),
              Texts{"cmpnt_write_trusted_start_whitelist: param is null."} + failed_run);

    start("");  // which nobody needs
    EXPECT_EQ(cmpnt_write_trusted_start_whitelist(0, by_store, 0, 0), 0);
    EXPECT_FALSE(exists(saved_list));

    start("hello\n");
    remove_tree(current_list);
    EXPECT_EQ(cmpnt_write_trusted_start_whitelist(store, by_store, 0, 0), -1);
    const std::string no_current = unopened(current_list);
    EXPECT_EQ(errors_said(), Texts(3, "file_exist_in_patch_list: " + no_current) +
                                 Texts{by_delete + no_current} + failed_run);
    EXPECT_EQ(read_file(dynamic_list), own("/usr/bin/a") + own("/usr/bin/d"));

    start("hello\n");
    remove_tree(switch_file);
    EXPECT_EQ(cmpnt_write_trusted_start_whitelist(store, by_store, 0, 0), 0);
    EXPECT_TRUE(exists(saved_list));
}

TEST_F(WhitelistRunAttacks, WhoseListsAreNoFiles) {
    for (const std::string &path :
         {saved_list, former_list, current_list, std::string(dynamic_list)}) {
        for (bool is_pipe : {true, false}) {
            SCOPED_TRACE(path + (is_pipe ? " is a pipe" : " is a directory"));
            SetUp();
            write_file(saved_list, "hello\n");
            write_file(former_list, "/usr/bin/old\n");
            write_file(current_list, "/usr/bin/new\n");
            write_file(dynamic_list, "");
            remove_tree(path);
            ASSERT_EQ(is_pipe ? mkfifo(path.c_str(), 0600) : mkdir(path.c_str(), 0700), 0);
            const Deadline deadline;
            EXPECT_EQ(cmpnt_write_trusted_start_whitelist(store, by_store, 0, 0), 0);
            EXPECT_EQ(errors_said(), Texts{});
            if (path != dynamic_list) {
                const bool is_added = path == current_list;
                EXPECT_EQ(read_file(dynamic_list), is_added ? own("/usr/bin/old") : "");
            }
            EXPECT_FALSE(exists(saved_list));
        }
    }
}

// What a run enters, the next package profits from.
TEST_F(WhitelistRunAttacks, LetAFilePass) {
    lay_out_device();
    put_bad_package();
    EXPECT_EQ(cmpnt_safe_verify(base_package, 0, 0, 0), -1);
    EXPECT_EQ(cmpnt_save_safe_verify_patch("hello", 0, 0, 0), 0);
    write_file(former_list, "/usr/bin/hello\n");
    write_file(current_list, "");
    EXPECT_EQ(cmpnt_write_trusted_start_whitelist(store, by_call, 0, 0), 0);
    EXPECT_EQ(cmpnt_safe_verify(base_package, 0, 0, 0), 0);
    EXPECT_EQ(cmpnt_save_safe_verify_patch("hello", 0, 0, 0), 0);
    write_file(current_list, "/usr/bin/hello\n");
    EXPECT_EQ(cmpnt_write_trusted_start_whitelist(store, by_call, 0, 0), 0);
    EXPECT_EQ(cmpnt_safe_verify(base_package, 0, 0, 0), -1);
}

}  // namespace
