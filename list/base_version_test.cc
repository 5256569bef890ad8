#include <string.h>
#include <unistd.h>

#include "tests/support/device_test.hh"
#include "tests/support/sqlite.hh"

namespace {

void add_base_package(const std::string &name, const std::string &version) {
    sql(main_db, "insert into package_info_table(package_name, base_version) values('" + name +
                     "', '" + version + "')");
}

}  // namespace

class BaseVersion : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        make_directories("/var/lib/opkg");
        memset(version, 'v', sizeof(version));
    }

    void create_table() {
        ASSERT_EQ(cmpnt_create_pkg_table(CMPNT_PACKAGE_INFO_TABLE, CMPNT_DB_MAIN), 0);
    }

    const std::string function = "cmpnt_get_base_version_by_pkg_name";
    char version[CMPNT_VERSION_SIZE];
};

TEST_F(BaseVersion, IsReadFromTheBaseTable) {
    create_table();
    add_base_package("first", "1.0");
    add_base_package("second", "2.0");
    add_base_package("third", "3.0");
    EXPECT_EQ(cmpnt_get_base_version_by_pkg_name("second", version), 0);
    EXPECT_EQ(std::string(version, sizeof(version)), "2.0" + std::string(29, '\0'));
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(BaseVersion, OfSeveralRowsIsTheLast) {
    create_table();
    add_base_package("pkg", "2.0");
    add_base_package("pkg", "1.0");
    EXPECT_EQ(cmpnt_get_base_version_by_pkg_name("pkg", version), 0);
    EXPECT_STREQ(version, "1.0");
}

TEST_F(BaseVersion, OfAnUnknownPackageIsEmptyAndNoFailure) {
    create_table();
    add_base_package("pkg", "1.0");
    EXPECT_EQ(cmpnt_get_base_version_by_pkg_name("pk", version), 0);
    EXPECT_EQ(std::string(version, sizeof(version)), std::string(32, '\0'));
}

// No record holds so long a name; one may hold the 79 bytes that it begins with.
TEST_F(BaseVersion, OfAnOverlongNameIsEmpty) {
    create_table();
    add_base_package(std::string(79, 'n'), "1.0");
    EXPECT_EQ(cmpnt_get_base_version_by_pkg_name(std::string(80, 'n').c_str(), version), 0);
    EXPECT_STREQ(version, "");
    EXPECT_EQ(cmpnt_get_base_version_by_pkg_name(std::string(79, 'n').c_str(), version), 0);
    EXPECT_STREQ(version, "1.0");
}

TEST_F(BaseVersion, IsCutAtItsField) {
    create_table();
    add_base_package("pkg", std::string(40, '1'));
    EXPECT_EQ(cmpnt_get_base_version_by_pkg_name("pkg", version), 0);
    EXPECT_EQ(version, std::string(31, '1'));
}

TEST_F(BaseVersion, TakesHostileNames) {
    create_table();
    for (const std::string &name :
         {std::string("x' or '1'='1"), std::string("$(reboot)"), std::string(5000, 'n')}) {
        EXPECT_EQ(cmpnt_get_base_version_by_pkg_name(name.c_str(), version), 0);
        EXPECT_STREQ(version, "");
    }
}

TEST_F(BaseVersion, FailsWithoutATableAndLeavesTheBuffer) {
    EXPECT_EQ(cmpnt_get_base_version_by_pkg_name("pkg", version), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", function, "cmpnt_get_pkg_info_database fail.\n"));
    EXPECT_EQ(std::string(version, sizeof(version)), std::string(32, 'v'));
    // Asking for it made the file.
    EXPECT_EQ(size_of(main_db), 0);
}

TEST_F(BaseVersion, RefusesNull) {
    EXPECT_EQ(cmpnt_get_base_version_by_pkg_name(nullptr, version), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", function, "param is null.\n"));
    forget_log();
    EXPECT_EQ(cmpnt_get_base_version_by_pkg_name("pkg", nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", function, "param is null.\n"));
    EXPECT_EQ(version[0], 'v');
}

class IsBaseVersion : public DeviceTest {
protected:
    void TearDown() override {
        cmpnt_recycle_pointer_array(paths, 3);
        DeviceTest::TearDown();
    }

    const std::string function = "cmpnt_pkg_is_base_version";
    char *paths[3] = {};
};

TEST_F(IsBaseVersion, StoresThePathOfTheFileInTheBackupCache) {
    write_file("/var/cache/opkg/backup/foo_1.2.ipk", "package");
    EXPECT_EQ(cmpnt_pkg_is_base_version(paths, 1, "foo", "1.2"), 1);
    EXPECT_STREQ(paths[1], "/var/cache/opkg/backup/foo_1.2.ipk");
    EXPECT_EQ(paths[0], nullptr);
    EXPECT_EQ(paths[2], nullptr);
    EXPECT_TRUE(logged("CMPNT_TRACE", function,
                       "get base name(foo), backup_path(/var/cache/opkg/backup/foo_1.2.ipk)\n"));
}

TEST_F(IsBaseVersion, KnowsNoOtherFile) {
    for (const char *name : {"foo_1.2.deb", "foo-1.2.ipk", "foo_1.20.ipk", "xfoo_1.2.ipk"}) {
        write_file(std::string("/var/cache/opkg/backup/") + name, "package");
    }
    write_file("/var/cache/opkg/download/foo_1.2.ipk", "package");
    EXPECT_EQ(cmpnt_pkg_is_base_version(paths, 0, "foo", "1.2"), 0);
    EXPECT_EQ(paths[0], nullptr);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(IsBaseVersion, CountsADanglingLinkAndADirectory) {
    make_directories("/var/cache/opkg/backup/dir_1.ipk");
    ASSERT_EQ(symlink("/nowhere", "/var/cache/opkg/backup/link_1.ipk"), 0);
    EXPECT_EQ(cmpnt_pkg_is_base_version(paths, 0, "dir", "1"), 1);
    EXPECT_EQ(cmpnt_pkg_is_base_version(paths, 1, "link", "1"), 1);
    EXPECT_STREQ(paths[1], "/var/cache/opkg/backup/link_1.ipk");
}

TEST_F(IsBaseVersion, BuildsThePathAsTheNameSays) {
    write_file("/var/cache/opkg/backup/_.ipk", "package");
    EXPECT_EQ(cmpnt_pkg_is_base_version(paths, 0, "", ""), 1);
    EXPECT_STREQ(paths[0], "/var/cache/opkg/backup/_.ipk");
    write_file("/var/cache/opkg/backup/a b'$(c)_1\n.ipk", "package");
    EXPECT_EQ(cmpnt_pkg_is_base_version(paths, 1, "a b'$(c)", "1\n"), 1);
}

TEST_F(IsBaseVersion, CutsThePathAtItsField) {
    const std::string longest = "/var/cache/opkg/backup/" + std::string(200, 'n') + "_";
    write_file(longest + std::string(259 - longest.size(), '1'), "package");
    EXPECT_EQ(cmpnt_pkg_is_base_version(paths, 0, std::string(200, 'n').c_str(),
                                        std::string(100, '1').c_str()),
              1);
    EXPECT_EQ(strlen(paths[0]), 259u);
}

TEST_F(IsBaseVersion, IsStillTrueWithoutMemoryForThePath) {
    write_file("/var/cache/opkg/backup/foo_1.2.ipk", "package");
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(cmpnt_pkg_is_base_version(paths, 0, "foo", "1.2"), 1);
    EXPECT_EQ(paths[0], nullptr);
    EXPECT_TRUE(logged("CMPNT_ERROR", function, "cmpnt_malloc_and_memory fail.\n"));
    EXPECT_EQ(traced("trace", function,
                     "get base name(foo), backup_path(/var/cache/opkg/backup/foo_1.2.ipk)\n"),
              0);
}

TEST_F(IsBaseVersion, RefusesNull) {
    write_file("/var/cache/opkg/backup/(null)_1.ipk", "package");
    EXPECT_EQ(cmpnt_pkg_is_base_version(paths, 0, nullptr, "1"), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", function, "param is null.\n"));
    forget_log();
    EXPECT_EQ(cmpnt_pkg_is_base_version(paths, 0, "foo", nullptr), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", function, "param is null.\n"));
    EXPECT_EQ(paths[0], nullptr);
}

TEST_F(IsBaseVersion, SurvivesAnArrayThatCannotTakeThePath) {
    write_file("/var/cache/opkg/backup/foo_1.2.ipk", "package");
    EXPECT_EQ(cmpnt_pkg_is_base_version(nullptr, 0, "foo", "1.2"), 1);
    EXPECT_EQ(cmpnt_pkg_is_base_version(paths, -1, "foo", "1.2"), 1);
}
