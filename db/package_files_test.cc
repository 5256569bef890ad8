#include <unistd.h>

#include "tests/support/device_test.hh"

namespace {

using Texts = std::vector<std::string>;

const std::string function = "cmpnt_delete_pkg_by_path";

std::string said(const std::string &message) { return "trace " + function + ": " + message + "\n"; }

// A path of exactly this length whose directory is "/tmp/.../LAST".
std::string directory_of_length(size_t length, const std::string &last) {
    std::string path = "/tmp";
    while (path.size() + 1 + 100 + 1 + last.size() < length) {
        path += "/" + std::string(100, 'd');
    }
    const size_t rest = length - path.size() - 1 - last.size();
    return path + "/" + std::string(rest, 'e') + last;
}

}  // namespace

class PackageFiles : public DeviceTest {};

TEST_F(PackageFiles, OfTheDownloadAreaAreTheFileAndItsTransferLeftover) {
    for (const char *name : {"a.bin", "_temp_a.bin__", "b.bin", "_temp_b.bin__"}) {
        write_file(std::string("/tmp/t/download/") + name, "x");
    }
    EXPECT_EQ(cmpnt_delete_pkg_by_path("/tmp/t/download/a.bin"), 0);
    EXPECT_EQ(names_in("/tmp/t/download"), (Texts{"_temp_b.bin__", "b.bin"}));
    EXPECT_EQ(trace_messages(),
              (Texts{said("delete ready: get path(/tmp/t/download)"),
                     said("delete ready: file(/tmp/t/download/a.bin)"),
                     said("delete ready: tftp tmp file(/tmp/t/download/_temp_a.bin__)")}));
    for (const TraceLine &line : trace_lines()) {
        EXPECT_TRUE(logged("CLIENT_TRACE", function, line.message));
    }
}

TEST_F(PackageFiles, OfAnUpgradeAreItsWholeDirectory) {
    for (const std::string &mark :
         {std::string(".single"), std::string(".multiple"), std::string(".new"),
          std::string(".single.bak"), std::string("x.newer")}) {
        forget_log();
        const std::string directory = "/tmp/smu1" + mark;
        write_file(directory + "/a.deb", "x");
        write_file(directory + "/deep/b.deb", "x");
        write_file("/tmp/smu1/a.deb", "x");
        EXPECT_EQ(cmpnt_delete_pkg_by_path((directory + "/a.deb").c_str()), 0);
        EXPECT_FALSE(exists(directory));
        EXPECT_TRUE(exists("/tmp/smu1/a.deb"));
        EXPECT_EQ(trace_messages(), (Texts{said("delete ready: get path(" + directory + ")"),
                                           said("delete ready: path(" + directory + ")")}));
        EXPECT_TRUE(logged("CLIENT_TRACE", function, "delete ready: path(" + directory + ")\n"));
    }
}

TEST_F(PackageFiles, AreFoundBehindDoubledSlashes) {
    write_file("/tmp/download/a.bin", "x");
    write_file("/tmp/download/b.bin", "x");
    write_file("/tmp/smu.single/a.deb", "x");
    EXPECT_EQ(cmpnt_delete_pkg_by_path("/tmp/download//a.bin"), 0);
    EXPECT_EQ(names_in("/tmp/download"), (Texts{"b.bin"}));
    EXPECT_EQ(cmpnt_delete_pkg_by_path("/tmp/smu.single//a.deb"), 0);
    EXPECT_FALSE(exists("/tmp/smu.single"));
}

TEST_F(PackageFiles, ElsewhereStay) {
    for (const char *path :
         {"/tmp/plain/a.bin", "/tmp/x.single/plain/a.bin", "/tmp/download/plain/a.bin",
          "/tmp/singlenew/a.bin", "/tmp/Download/a.single"}) {
        write_file(path, "x");
        EXPECT_EQ(cmpnt_delete_pkg_by_path(path), 0);
        EXPECT_TRUE(exists(path)) << path;
    }
    EXPECT_EQ(trace_lines().size(), 5u);
}

TEST_F(PackageFiles, OfADirectoryWithBothMarksAreThoseOfADownload) {
    write_file("/tmp/download.single/a.bin", "x");
    write_file("/tmp/download.single/_temp_a.bin__", "x");
    write_file("/tmp/download.single/b.bin", "x");
    EXPECT_EQ(cmpnt_delete_pkg_by_path("/tmp/download.single/a.bin"), 0);
    EXPECT_EQ(names_in("/tmp/download.single"), (Texts{"b.bin"}));
}

TEST_F(PackageFiles, AreKnownByAPartOfTheDirectorysName) {
    write_file("/tmp/my-downloads/a.bin", "x");
    EXPECT_EQ(cmpnt_delete_pkg_by_path("/tmp/my-downloads/a.bin"), 0);
    EXPECT_EQ(names_in("/tmp/my-downloads"), Texts());
}

TEST_F(PackageFiles, ThatAreNotThereAreNoFailure) {
    EXPECT_EQ(cmpnt_delete_pkg_by_path("/tmp/download/a.bin"), 0);
    EXPECT_EQ(cmpnt_delete_pkg_by_path("/tmp/smu.single/a.bin"), 0);
}

TEST_F(PackageFiles, HaveTheResultOfTheLastRemoval) {
    // The leftover is looked at after the file, so only its failure is seen.
    make_directories("/tmp/download/a.bin");
    fault::fail("opendir", 1, EIO);
    EXPECT_EQ(cmpnt_delete_pkg_by_path("/tmp/download/a.bin"), 0);
    make_directories("/tmp/download/_temp_a.bin__");
    fault::fail("opendir", 2, EIO);
    EXPECT_EQ(cmpnt_delete_pkg_by_path("/tmp/download/a.bin"), -1);
    make_directories("/tmp/smu.new");
    fault::fail("opendir", 1, EIO);
    EXPECT_EQ(cmpnt_delete_pkg_by_path("/tmp/smu.new/a.bin"), -1);
}

TEST_F(PackageFiles, OfAPathThatEndsInASlashAreTheDirectory) {
    write_file("/tmp/download/a.bin", "x");
    EXPECT_EQ(cmpnt_delete_pkg_by_path("/tmp/download/"), 0);
    EXPECT_FALSE(exists("/tmp/download"));
}

TEST_F(PackageFiles, OfAPathWithoutASlashAreSoughtInADirectoryOfThatName) {
    ASSERT_EQ(chdir("/tmp"), 0);
    make_directories("/tmp/smu.new");
    EXPECT_EQ(cmpnt_delete_pkg_by_path("smu.new"), 0);
    EXPECT_FALSE(exists("/tmp/smu.new"));
    write_file("/tmp/plain", "x");
    EXPECT_EQ(cmpnt_delete_pkg_by_path("plain"), 0);
    EXPECT_EQ(cmpnt_delete_pkg_by_path(""), 0);
    EXPECT_TRUE(exists("/tmp/plain"));
    ASSERT_EQ(chdir("/"), 0);
}

TEST_F(PackageFiles, OfARootDirectoryStay) {
    EXPECT_EQ(cmpnt_delete_pkg_by_path("/"), 0);
    EXPECT_EQ(cmpnt_delete_pkg_by_path("/a.bin"), 0);
    EXPECT_EQ(trace_messages(),
              (Texts{said("delete ready: get path()"), said("delete ready: get path()")}));
}

TEST_F(PackageFiles, WithAnOverlongPathStay) {
    const std::string directory = directory_of_length(258, ".single");
    write_file(directory + "/aa", "x");
    write_file(directory + "/a", "x");
    EXPECT_EQ(cmpnt_delete_pkg_by_path((directory + "/aa").c_str()), -1);
    EXPECT_TRUE(exists(directory + "/aa"));
    EXPECT_EQ(cmpnt_delete_pkg_by_path(std::string(100000, '/').c_str()), -1);
    // One shorter is not.
    const std::string shorter = directory_of_length(257, ".single");
    write_file(shorter + "/a", "x");
    EXPECT_EQ(cmpnt_delete_pkg_by_path((shorter + "/a").c_str()), 0);
    EXPECT_FALSE(exists(shorter));
}

TEST_F(PackageFiles, WhoseLeftoverHasNoPathKeepTheirDirectory) {
    // Cut, the leftover's path would be that of the file beside it.
    const std::string directory = directory_of_length(250, "download");
    write_file(directory + "/abc", "x");
    write_file(directory + "/_temp_ab", "another's");
    EXPECT_EQ(cmpnt_delete_pkg_by_path((directory + "/abc").c_str()), 0);
    EXPECT_EQ(names_in(directory), (Texts{"_temp_ab"}));
}

TEST_F(PackageFiles, TakeHostileNames) {
    write_file("/tmp/download/$(touch hit) '\"\n%s%n", "x");
    EXPECT_EQ(cmpnt_delete_pkg_by_path("/tmp/download/$(touch hit) '\"\n%s%n"), 0);
    EXPECT_EQ(names_in("/tmp/download"), Texts());
}

TEST_F(PackageFiles, OfNullAreRefused) {
    EXPECT_EQ(cmpnt_delete_pkg_by_path(nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", function, "param is null\n"));
}
