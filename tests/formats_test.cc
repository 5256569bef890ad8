// The examples of docs/formats.md, each as the library reads it, or writes it.
#include <map>
#include <regex>
#include <sstream>

#include "tests/support/device_test.hh"

namespace {

using Examples = std::map<std::string, std::string>;

bool begins_with(const std::string &text, const std::string &beginning) {
    return text.compare(0, beginning.size(), beginning) == 0;
}

// "Example: `PATH`", a blank line, and the indented lines up to the next that is not.
Examples read_examples() {
    const std::string mark = "Example: `", indent = "    ";
    Examples examples;
    std::istringstream document(read_file(CMPNT_FORMATS_DOCUMENT));
    std::string path, blank_lines;
    for (std::string line; std::getline(document, line);) {
        if (begins_with(line, mark)) {
            path = line.substr(mark.size(), line.find('`', mark.size()) - mark.size());
            blank_lines.clear();
        } else if (line.empty()) {
            blank_lines += examples.count(path) != 0 ? "\n" : "";
        } else if (begins_with(line, indent)) {
            examples[path] += blank_lines + line.substr(indent.size()) + "\n";
            blank_lines.clear();
        } else {
            path.clear();
        }
    }
    examples.erase("");
    return examples;
}

class Formats : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        platform.switch_result = 1;
        for (const auto &[path, text] : examples) {
            write_file(path, text);
        }
    }

    const Examples examples = read_examples();
};

TEST_F(Formats, AreAllTried) {
    // Each is asked about in one of the tests below.
    EXPECT_THAT(examples, testing::SizeIs(12));
}

TEST_F(Formats, OfHashLists) {
    write_file("/data/smu_hello/smu_hello.txt", "corrects the greeting\n");
    EXPECT_EQ(cmpnt_safe_verify("/data/smu_hello/unlisted.deb", 0, 0, 0), -1);
    ASSERT_THAT(platform.digest_questions, testing::SizeIs(1));
    EXPECT_EQ(platform.digest_questions[0].file_name, "smu_hello.txt");
    EXPECT_EQ(platform.digest_questions[0].digest,
              examples.at("/data/smu_hello/patch-sm3.hash").substr(0, 64));
    EXPECT_STREQ(CMPNT_HASH_NODE(hash_verify_list.next)->name, "smu_hello.txt");
    cmpnt_free_sign_verify();
}

TEST_F(Formats, OfHashListsOfInstalledFiles) {
    const std::string text = examples.at("/var/safe-verify/sm3/global-sm3.hash");
    write_file("/data/list/patch-sm3.hash", text);
    EXPECT_EQ(cmpnt_safe_verify("/data/list/a.deb", 0, 0, 0), -1);
    EXPECT_STREQ(CMPNT_HASH_NODE(hash_verify_list.next)->name, "/usr/bin/hello");
    cmpnt_free_sign_verify();
    cmpnt_sign_verify_init();
    write_file("/data/one/patch-sm3.hash", std::regex_replace(text, std::regex("  "), " "));
    EXPECT_EQ(cmpnt_safe_verify("/data/one/a.deb", 0, 0, 0), -1);
    EXPECT_EQ(hash_verify_list.next, &hash_verify_list);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_hash_info", "hash file format err.\n"));
}

TEST_F(Formats, OfWhitelists) {
    EXPECT_EQ(file_exist_in_global_whitelist("/usr/bin/bigtool"), 0);
    write_file("/var/safe-verify/signature/global-white-sm2.sign", "");
    for (const char *path : {"/usr/bin/bigtool", "/etc/init.d/local", "/usr/bin/b", "/usr"}) {
        EXPECT_EQ(file_exist_in_global_whitelist(path), 1) << path;
    }
    EXPECT_EQ(file_exist_in_global_whitelist("/usr/bin/bigtool2"), 0);

    EXPECT_EQ(file_exist_in_dynamic_whitelist("/usr/bin/hello", 1), 1);
    EXPECT_EQ(file_exist_in_dynamic_whitelist("/usr/bin/tool", 0), 1);
    EXPECT_EQ(file_exist_in_dynamic_whitelist("/usr/bin/tool", 1), 0);
    EXPECT_EQ(file_exist_in_dynamic_whitelist("/usr/bin/to", 0), 0);
}

TEST_F(Formats, OfListsOfFilesAndOfSavedPatches) {
    const std::string saved = "/var/cache/opkg/cmpnt_safe_verify/.safe_verify_patch";
    remove_tree(saved);
    for (const char *name : {"hello", "bash", "hello"}) {
        EXPECT_EQ(cmpnt_save_safe_verify_patch(name, 0, 0, 0), 0);
    }
    EXPECT_EQ(read_file(saved), examples.at(saved));

    write_file("/var/lib/opkg/info/bash.list", "");
    EXPECT_EQ(cmpnt_write_trusted_start_whitelist(1, 1, 0, 0), 0);
    EXPECT_THAT(
        platform.whitelist_changes,
        testing::ElementsAre(WhitelistChange{false, "/usr/bin/hello-old", "cmpnt_upgrade_c", 2},
                             WhitelistChange{false, "/usr/bin/hello", "cmpnt_upgrade_c", 3}));
    EXPECT_FALSE(exists(saved));
}

TEST_F(Formats, OfControlFiles) {
    cmpnt_control_info info = {};
    ASSERT_EQ(cmpnt_get_pkg_info_from_control(&info, "/opt/control"), 0);
    EXPECT_STREQ(info.package, "smu_hello");
    EXPECT_STREQ(info.version, "1.0-fix1");
    EXPECT_STREQ(info.architecture, "arm");
    EXPECT_STREQ(info.description, "corrects the greeting");
    EXPECT_STREQ(info.md5_sum, "6f5902ac237024bdd0c176cb93063dc4");
    EXPECT_EQ(info.is_reboot, 1);
    EXPECT_EQ(info.installed_size, 0x40u);
    EXPECT_STREQ(info.serial, "1001;1002");
    EXPECT_STREQ(info.card_type, "7");
    cmpnt_free_pointer(info.serial);
    cmpnt_free_pointer(info.card_type);
}

TEST_F(Formats, OfStatusFiles) {
    char version[CMPNT_VERSION_SIZE] = "";
    EXPECT_EQ(cmpnt_get_pkg_current_version("hello", version), 0);
    EXPECT_STREQ(version, "1.0");
    EXPECT_EQ(cmpnt_get_pkg_current_version("bash", version), 0);
    EXPECT_STREQ(version, "5.2.15-2+b8");
    EXPECT_EQ(cmpnt_get_pkg_current_version("tar", version), -1);
}

TEST_F(Formats, OfProductTypeAndHistoryFiles) {
    cmpnt_file_param param;
    cmpnt_product_type product = {};
    write_file("/opt/product_type", examples.at("/opt/product_type") + "\n");
    set_file_param(&param, 1, 0, 0, 0);
    EXPECT_EQ(cmpnt_parse_config_from_file(&param, "/opt/product_type", &product), 0);
    EXPECT_STREQ(product.product, "C9000");

    cmpnt_history history = {};
    set_file_param(&param, 3, 0, 0, 0);
    EXPECT_EQ(cmpnt_parse_config_from_file(&param, "/opt/history", &history), 0);
    EXPECT_STREQ(history.cmd, "active");
    EXPECT_EQ(platform.cli, "");
    write_file("/opt/history", examples.at("/opt/history") + "\n");
    EXPECT_EQ(cmpnt_parse_config_from_file(&param, "/opt/history", &history), 0);
    EXPECT_THAT(platform.cli, testing::HasSubstr("    Patch:     smu_hello\n"));
}

TEST_F(Formats, OfSmallFilesAndTheTrace) {
    EXPECT_EQ(cmpnt_get_local_tipc_instance(), 4097);
    forget_log();
    cmpnt_write_debug_log("trace", "here", 7, "a message\n");
    EXPECT_TRUE(std::regex_match(
        read_file(trace_path()),
        std::regex("\\[[0-9]{4}(-[0-9]{2}){2} [0-9]{2}(:[0-9]{2}){2}-[0-9]{6}, trace, here-7\\]"
                   "a message\n")));
}

}  // namespace
