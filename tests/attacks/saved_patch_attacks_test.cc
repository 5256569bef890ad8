// Odd names of patches to save, and odd lists to save them to.
#include <errno.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/attacks/attack_table.hh"
#include "tests/support/deadline.hh"

namespace {

const std::string saved_folder = "/var/cache/opkg/cmpnt_safe_verify";
const std::string saved_list = saved_folder + "/.safe_verify_patch";
constexpr size_t mebibyte = 1 << 20;

struct Saving {
    const char *name;
    std::string list, package, new_list;
};

class SavedPatchAttacks : public AttackTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        write_file(switch_file, "");
    }
};

TEST_F(SavedPatchAttacks, WithNames) {
    const std::string mebibyte_name(mebibyte, 'n');
    const std::string zero(1, '\0');
    for (const Saving &saving : std::vector<Saving>{
             {"the first", "", "hello", "hello\n"},
             {"a known one", "a\nhello\n", "hello", "a\nhello\n"},
             {"a blank more", "hello\n", "hello ", "hello\nhello \n"},
             {"upper case", "hello\n", "HELLO", "hello\nHELLO\n"},
             {"no text", "", "", "\n"},
             {"no text, known", "a\n\n", "", "a\n\n"},
             {"a newline", "", "a\nb", "a\nb\n"},
             {"a newline, known", "a\nb\n", "a\nb", "a\nb\na\nb\n"},
             {"a conversion", "", "%s%n", "%s%n\n"},
             {"a way up", "", "../../../../opt/canary", "../../../../opt/canary\n"},
             {"a list without its newline", "hell", "hello", "hellhello\n"},
             {"a list without its newline, known", "hellox", "hello", "hellox"},
             {"a carriage return", "hello\r\n", "hello", "hello\r\nhello\n"},
             {"a zero byte", zero + "hello\n", "hello", zero + "hello\nhello\n"},
             {"a mebibyte", "", mebibyte_name, mebibyte_name + "\n"},
             {"a mebibyte of list", mebibyte_name + "\n", "hello", mebibyte_name + "\nhello\n"},
             {"as long as a line is read", "", std::string(1022, 'n'),
              std::string(1022, 'n') + "\n"},
             {"as long as a line is read, known", std::string(1022, 'n') + "\n",
              std::string(1022, 'n'), std::string(1022, 'n') + "\n"},
         }) {
        SCOPED_TRACE(saving.name);
        SetUp();
        write_file(saved_list, saving.list);
        const Deadline deadline;
        EXPECT_EQ(cmpnt_save_safe_verify_patch(saving.package.c_str(), 0, 0, 0), 0);
        EXPECT_TRUE(read_file(saved_list) == saving.new_list);
        EXPECT_EQ(errors_said(), Texts{});
    }
}

TEST_F(SavedPatchAttacks, WithTheFile) {
    const std::string unopened =
        "cmpnt_save_safe_verify_patch: open(" + saved_list + ") failed, reason: ";
    const Deadline deadline;
    make_directories(saved_list);
    EXPECT_EQ(cmpnt_save_safe_verify_patch("hello", 0, 0, 0), -1);
    EXPECT_EQ(errors_said(), Texts{unopened + strerror(EISDIR)});

    SetUp();
    make_directories(saved_folder);
    ASSERT_EQ(mkfifo(saved_list.c_str(), 0600), 0);
    EXPECT_EQ(cmpnt_save_safe_verify_patch("hello", 0, 0, 0), 0);
    EXPECT_EQ(errors_said(), Texts{});

    SetUp();
    make_directories(saved_folder);
    ASSERT_EQ(symlink(".safe_verify_patch", saved_list.c_str()), 0);
    EXPECT_EQ(cmpnt_save_safe_verify_patch("hello", 0, 0, 0), -1);
    EXPECT_EQ(errors_said(), Texts{unopened + strerror(ELOOP)});

    SetUp();
    write_file(saved_folder, "in the way");
    EXPECT_EQ(cmpnt_save_safe_verify_patch("hello", 0, 0, 0), -1);
    EXPECT_EQ(errors_said(), Texts{unopened + strerror(ENOTDIR)});

    SetUp();
    remove_tree(switch_file);
    const Snapshot before = look_at_device();
    EXPECT_EQ(cmpnt_save_safe_verify_patch("hello", 0, 0, 0), 0);
    EXPECT_EQ(changes_between(before, look_at_device()), Texts{});
    EXPECT_EQ(cmpnt_save_safe_verify_patch(nullptr, 0, 0, 0), -1);
    EXPECT_EQ(errors_said(), Texts{"cmpnt_save_safe_verify_patch: param is null."});
}

}  // namespace
