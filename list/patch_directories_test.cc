#include <errno.h>
#include <unistd.h>

#include "tests/support/device_test.hh"
#include "tests/support/upgrade_records.hh"

namespace {

using Texts = std::vector<std::string>;

constexpr int32_t application = 0x8;

}  // namespace

class PatchDirectories : public DeviceTest {
protected:
    static void add(const std::string &path, int32_t op_flag = 0) {
        cmpnt_upgrade_value record = upgrade_record("smu", "pkg", "1.0", "active", path);
        record.op_flag = op_flag;
        ASSERT_EQ(insert_cmpnt_upgrade_db_to_list(&record, CMPNT_UPGRADE_LIST), 0);
    }

    static testing::AssertionResult says(const std::string &directory, const std::string &path) {
        return logged("CMPNT_MAJOR", "cmpnt_delete_not_install_patch",
                      "begin start delete dir(" + directory + "), path(" + path + ")\n");
    }
};

TEST_F(PatchDirectories, GoForAllButApplicationSmus) {
    for (const char *directory : {"plain", "cold", "hot", "app", "all", "beside"}) {
        write_file(std::string("/opt/") + directory + "/a.deb", "x");
        write_file(std::string("/opt/") + directory + "/sub/b.deb", "x");
    }
    add("/opt/plain/a.deb");
    add("/opt/cold/a.deb", 0x1);
    add("/opt/app/a.deb", application);
    add("/opt/hot/a.deb", 0x20);
    add("/opt/all/a.deb", 0x29);
    cmpnt_delete_not_install_patch();
    EXPECT_EQ(names_in("/opt"), (Texts{"all", "app", "beside"}));
    EXPECT_TRUE(exists("/opt/app/sub/b.deb"));
    EXPECT_EQ(trace_messages(),
              (Texts{"major cmpnt_delete_not_install_patch: begin start delete dir(/opt/plain), "
                     "path(/opt/plain/a.deb)\n",
                     "major cmpnt_delete_not_install_patch: begin start delete dir(/opt/cold), "
                     "path(/opt/cold/a.deb)\n",
                     "major cmpnt_delete_not_install_patch: begin start delete dir(/opt/hot), "
                     "path(/opt/hot/a.deb)\n"}));
    EXPECT_TRUE(says("/opt/plain", "/opt/plain/a.deb"));
}

TEST_F(PatchDirectories, GoAndTheListStays) {
    write_file("/opt/a/a.deb", "x");
    add("/opt/a/a.deb");
    add("/opt/b/b.deb", application);
    const cmpnt_upgrade_value hp = upgrade_record("hp", "pkg", "1.0", "active", "/opt/hp/a.deb");
    ASSERT_EQ(insert_cmpnt_upgrade_db_to_list(&hp, CMPNT_HP_LIST), 0);
    write_file("/opt/hp/a.deb", "x");
    cmpnt_delete_not_install_patch();
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 2u);
    EXPECT_EQ(records_of(cmpnt_hp_list).size(), 1u);
    EXPECT_TRUE(exists("/opt/hp/a.deb"));
    EXPECT_FALSE(exists("/opt/a"));
}

TEST_F(PatchDirectories, OfNoUpgradeAreNone) {
    cmpnt_delete_not_install_patch();
    EXPECT_TRUE(trace_messages().empty());
}

// Not even the download area is spared.
TEST_F(PatchDirectories, GoWhateverLiesThere) {
    write_file("/data/cmpnt/opkg/download/SMU-1.bin", "x");
    write_file("/data/other/file", "x");
    add("/data/cmpnt/opkg/download/SMU-1.bin");
    cmpnt_delete_not_install_patch();
    EXPECT_EQ(names_in("/data/cmpnt/opkg"), Texts());
    add("/data/x.bin");
    cmpnt_delete_not_install_patch();
    EXPECT_EQ(names_in("/data"), Texts());
    make_directories("/data");  // the sandbox's own stays, and is empty
    EXPECT_TRUE(says("/data", "/data/x.bin"));
}

TEST_F(PatchDirectories, ThatAreMissingAreNoFailure) {
    write_file("/opt/b/b.deb", "x");
    add("/opt/a/a.deb");
    add("");
    add("/opt/b/b.deb");
    cmpnt_delete_not_install_patch();
    EXPECT_TRUE(says("/opt/a", "/opt/a/a.deb"));
    EXPECT_TRUE(says("", ""));
    EXPECT_FALSE(exists("/opt/b"));
}

TEST_F(PatchDirectories, ThatCannotGoDoNotKeepTheOthers) {
    write_file("/opt/a/a.deb", "x");
    write_file("/opt/b/b.deb", "x");
    add("/opt/a/a.deb");
    add("/opt/b/b.deb");
    fault::fail("opendir", 2, EMFILE);  // the first finds that it exists
    cmpnt_delete_not_install_patch();
    EXPECT_TRUE(exists("/opt/a"));
    EXPECT_FALSE(exists("/opt/b"));
}

TEST_F(PatchDirectories, OfAPathWithoutASlashAreThePathItself) {
    write_file("/opt/home/x.bin", "goes");
    write_file("/opt/home/y.bin/file", "goes");
    write_file("/opt/home/z.bin", "stays");
    ASSERT_EQ(chdir("/opt/home"), 0);
    add("x.bin");
    add("y.bin");
    cmpnt_delete_not_install_patch();
    ASSERT_EQ(chdir("/"), 0);
    EXPECT_EQ(names_in("/opt/home"), (Texts{"z.bin"}));
    EXPECT_TRUE(says("x.bin", "x.bin"));
    EXPECT_TRUE(logged("CMPNT_ERROR", "get_path_exclude_file_name", "str is null.\n"));
}

// The root directory is no SMU's, however a path leads there.
TEST_F(PatchDirectories, NeverAreTheRoot) {
    add("/x.bin");
    add("//x.bin");
    add("///x.bin");
    cmpnt_remove(nullptr);  // a first line in the trace file, whose directory is looked for
    const int before = fault::calls("opendir");
    fault::fail("opendir", 1, EACCES, 1000);  // so that a failing test removes nothing
    cmpnt_delete_not_install_patch();
    EXPECT_EQ(fault::calls("opendir"), before);
    EXPECT_TRUE(says("", "/x.bin"));
    EXPECT_TRUE(says("/", "//x.bin"));
    EXPECT_TRUE(says("//", "///x.bin"));
}

TEST_F(PatchDirectories, OfALongPathAreWhole) {
    const std::string directory = "/opt/" + std::string(120, 'd') + "/" + std::string(120, 'e');
    const std::string path = directory + "/" + std::string(259 - directory.size() - 1, 'f');
    write_file(path, "x");
    add(path);
    cmpnt_delete_not_install_patch();
    EXPECT_FALSE(exists(directory));
    EXPECT_TRUE(says(directory, path));
}
