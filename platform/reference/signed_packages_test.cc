// What the package maker makes, the library passes; what is changed afterwards, it refuses.
#include <stdlib.h>

#include <vector>

#include "platform/reference/reference_platform.h"
#include "tests/support/device_test.hh"

namespace {

const std::string base_package = "/data/hello_1.0.ipk";
const std::string patch = "/data/smu_hello/hello_1.0-fix1.deb";
const std::string global_list = "/var/safe-verify/sm3/global-sm3.hash";

class SignedPackagesTest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        g_cmpnt_dbg_level = 0;  // what is said stands in the trace file
        reference_platform_set_signer_id(nullptr);
        write_file("/var/cache/opkg/.cmpnt_safe_verify_config", "");
        write_file("/tmp/tree/usr/bin/hello", "echo hello\n");
        write_file("/tmp/smu_hello.txt", "corrects the greeting\n");
        make("key /tmp/vendor.pem");
        make("package " + base_package + " /tmp/tree");
        make("package /tmp/hello_1.0-fix1.deb /tmp/tree");
        make_lists("");
    }

    // Of the same packages, signed with these options.
    static void make_lists(const std::string &options) {
        make(options + " global / /tmp/vendor.pem /tmp/tree");
        make(options + " patch /data/smu_hello /tmp/vendor.pem /tmp/*.deb /tmp/smu_hello.txt");
    }
    static void make(const std::string &arguments) {
        ASSERT_EQ(0, system((CMPNT_PACKAGE_MAKER " " + arguments).c_str())) << arguments;
    }

    static int32_t verify(const std::string &path) {
        remove_tree("/var/cache/opkg/cmpnt_safe_verify");
        cmpnt_free_sign_verify();
        cmpnt_sign_verify_init();
        return cmpnt_safe_verify(path.c_str(), 0, 0, 0);
    }
    static void change_last_byte(const std::string &path) {
        std::string data = read_file(path);
        ASSERT_FALSE(data.empty()) << path;
        data.back() = static_cast<char>(data.back() ^ 1);
        write_file(path, data);
    }
};

TEST_F(SignedPackagesTest, PassTheLibrary) {
    EXPECT_EQ(0, verify(base_package));
    EXPECT_EQ(0, verify(patch));
}

TEST_F(SignedPackagesTest, DoNotPassWithOneByteChanged) {
    for (const std::string &path :
         {global_list, std::string("/var/safe-verify/signature/global-sm2.sign")}) {
        const std::string good = read_file(path);
        change_last_byte(path);
        EXPECT_EQ(-1, verify(base_package)) << path;
        write_file(path, good);
    }
    for (const char *name :
         {"hello_1.0-fix1.deb", "smu_hello.txt", "patch-sm3.hash", "patch-sm2.sign"}) {
        const std::string path = std::string("/data/smu_hello/") + name;
        const std::string good = read_file(path);
        change_last_byte(path);
        EXPECT_EQ(-1, verify(patch)) << path;
        write_file(path, good);
    }
    EXPECT_EQ(0, verify(base_package));
    EXPECT_EQ(0, verify(patch));
}

TEST_F(SignedPackagesTest, DoNotPassWithAnotherFileInside) {
    write_file("/tmp/tree/usr/bin/hello", "echo hullo\n");
    make("package " + base_package + " /tmp/tree");
    EXPECT_EQ(-1, verify(base_package));
    EXPECT_EQ(1, traced("error", "cmpnt_global_hash_file_verify",
                        "file(/usr/bin/hello) not in dynamic white list.\n"));
    // Unless its client vouches for it.
    EXPECT_EQ(0, safe_verify_whitelist_update("/usr/bin/hello", "cmpnt_upgrade_c", 2));
    EXPECT_EQ(0, verify(base_package));
}

TEST_F(SignedPackagesTest, DoNotPassWithAnotherIdentifierOrKey) {
    make_lists("--id vendor@example.org");
    EXPECT_EQ(-1, verify(base_package));
    EXPECT_EQ(-1, verify(patch));
    reference_platform_set_signer_id("vendor@example.org");
    EXPECT_EQ(0, verify(base_package));
    EXPECT_EQ(0, verify(patch));
    make("key /tmp/other.pem /var/safe-verify/key/korvel_sm2_public.pem");
    EXPECT_EQ(-1, verify(base_package));
    EXPECT_EQ(-1, verify(patch));
}

TEST_F(SignedPackagesTest, PassWhateverAWhitelistedFileHolds) {
    make("--white /usr/bin/hello global / /tmp/vendor.pem /tmp/tree");
    write_file("/tmp/tree/usr/bin/hello", "echo hullo\n");
    make("package " + base_package + " /tmp/tree");
    EXPECT_EQ(0, verify(base_package));
    change_last_byte("/var/safe-verify/signature/global-white-sm2.sign");
    EXPECT_EQ(-1, verify(base_package));
}

}  // namespace
