#include "verify/unpack.hh"

#include <errno.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/base_packages.hh"
#include "tests/support/deadline.hh"
#include "tests/support/device_test.hh"
#include "tests/support/verification.hh"

constexpr char package[] = "/opt/base.ipk";
const std::string scratch_path = scratch;

class Unpack : public DeviceTest {
protected:
    static testing::AssertionResult says(const std::string &message) {
        return logged("CMPNT_ERROR", "cmpnt_unzip_safe_verify_file", message);
    }
};

TEST_F(Unpack, LaysTheInstalledFilesAndTheOuterOnesIntoTheScratchDirectory) {
    ASSERT_TRUE(PackageTree()
                    .file("/usr/bin/x", "text of x")
                    .link("/usr/bin/link", "x")
                    .outer_file("debian-binary", "2.0\n")
                    .outer_file("control.tar.gz", "control")
                    .pack(package));
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), 0);
    EXPECT_EQ(names_in(scratch),
              (std::vector<std::string>{"control.tar.gz", "data.tar.gz", "debian-binary", "usr"}));
    EXPECT_EQ(read_file(scratch_path + "/usr/bin/x"), "text of x");
    EXPECT_TRUE(exists(scratch_path + "/usr/bin/link"));
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(Unpack, OverwritesWhatIsThere) {
    write_file(scratch_path + "/usr/bin/x", "stale");
    write_file(scratch_path + "/usr/bin/y", "stale");
    write_file(scratch_path + "/data.tar.gz", "stale");
    ASSERT_TRUE(PackageTree().file("/usr/bin/x", "new").pack(package));
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), 0);
    EXPECT_EQ(read_file(scratch_path + "/usr/bin/x"), "new");
    EXPECT_EQ(read_file(scratch_path + "/usr/bin/y"), "stale");
}

TEST_F(Unpack, NeedsTheScratchDirectory) {
    ASSERT_TRUE(PackageTree().pack(package));
    write_file("/var/cache/opkg/cmpnt_safe_verify", "in the way");
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), -1);
    EXPECT_TRUE(says("mkdir fail, dir_path(" + scratch_path + ").\n"));
}

TEST_F(Unpack, NeedsThePackage) {
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), -1);
    EXPECT_TRUE(says("file(/opt/base.ipk) is not exist.\n"));
    EXPECT_TRUE(exists(scratch));  // which comes first
    EXPECT_EQ(fault::calls("popen"), 0);
}

TEST_F(Unpack, NeedsAnArchive) {
    for (const char *text : {"", "no archive", "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx"}) {
        forget_log();
        write_file(package, text);
        EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), -1);
        if (text[0] != '\0') {
            EXPECT_TRUE(
                says("cmpnt_popen_cmd_run fail, buf(/opt/base.ipk -C " + scratch_path + ").\n"));
        }
    }
}

TEST_F(Unpack, NeedsAWholeArchive) {
    ASSERT_TRUE(PackageTree().file("/usr/bin/x", std::string(5000, 'x')).pack(package));
    const std::string text = read_file(package);
    write_file(package, text.substr(0, text.size() - 20));
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), -1);
    EXPECT_TRUE(says("cmpnt_popen_cmd_run fail, buf(/opt/base.ipk -C " + scratch_path + ").\n"));
}

TEST_F(Unpack, NeedsTheInnerArchive) {
    ASSERT_TRUE(
        PackageTree().outer_file("control.tar.gz", "control").pack_without_inner_archive(package));
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), -1);
    EXPECT_TRUE(says("file(" + scratch_path + "/data.tar.gz) is not exist.\n"));
    EXPECT_TRUE(exists(scratch_path + "/control.tar.gz"));
    EXPECT_EQ(fault::calls("popen"), 1);
}

TEST_F(Unpack, NeedsAnInnerArchiveThatIsOne) {
    ASSERT_TRUE(
        PackageTree().outer_file("data.tar.gz", "no archive").pack_without_inner_archive(package));
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), -1);
    EXPECT_TRUE(says("cmpnt_system_cmd_run fail, buf(" + scratch_path + "/data.tar.gz -C " +
                     scratch_path + ").\n"));
}

TEST_F(Unpack, UsesAnInnerArchiveLeftFromBefore) {
    ASSERT_TRUE(PackageTree().file("/usr/bin/x").pack(package));
    ASSERT_EQ(cmpnt_unzip_safe_verify_file(package), 0);
    remove_tree(scratch_path + "/usr");
    ASSERT_TRUE(PackageTree().pack_without_inner_archive(package));
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), 0);
    EXPECT_TRUE(exists(scratch_path + "/usr/bin/x"));
}

TEST_F(Unpack, HandsThePathToTheShellWithItsParenthesesEscapedAndNothingElse) {
    ASSERT_TRUE(PackageTree().file("/usr/bin/x").pack("/opt/base(1).ipk"));
    EXPECT_EQ(cmpnt_unzip_safe_verify_file("/opt/base(1).ipk"), 0);
    ASSERT_TRUE(PackageTree().file("/usr/bin/x").pack("/opt/with blank.ipk"));
    EXPECT_EQ(cmpnt_unzip_safe_verify_file("/opt/with blank.ipk"), -1);
    EXPECT_TRUE(
        says("cmpnt_popen_cmd_run fail, buf(/opt/with blank.ipk -C " + scratch_path + ").\n"));
}

TEST_F(Unpack, HandsPathsOfMoreThanAnArrayFullOfCharactersOnWhole) {
    const std::string path = "/opt/" + std::string(250, 'd') + "/" + std::string(250, 'e') + ".ipk";
    ASSERT_TRUE(PackageTree().file("/usr/bin/x").pack(path));
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(path.c_str()), 0);
    EXPECT_TRUE(exists(scratch_path + "/usr/bin/x"));
}

TEST_F(Unpack, RefusesAPathThatDoesNotFitTheCommand) {
    const size_t longest = CMPNT_LINE_SIZE - 1 - std::string(" -C ").size() - scratch_path.size();
    std::string path = "/opt/";
    while (path.size() < longest - 200) {
        path += std::string(100, 'd') + "/";
    }
    const std::string fits = path + std::string(longest - path.size() - 4, 'e') + ".ipk";
    const std::string too_long = path + std::string(longest - path.size() - 3, 'e') + ".ipk";
    ASSERT_TRUE(PackageTree().pack(fits));
    ASSERT_TRUE(PackageTree().pack(too_long));
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(fits.c_str()), 0);
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(too_long.c_str()), -1);
    EXPECT_FALSE(exists(trace_path()));
    EXPECT_EQ(fault::calls("popen"), 2);
}

TEST_F(Unpack, FailsWhenTheShellCannotBeRun) {
    ASSERT_TRUE(PackageTree().pack(package));
    fault::fail("popen", 1, ENOMEM);
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), -1);
    EXPECT_TRUE(says("cmpnt_popen_cmd_run fail, buf(/opt/base.ipk -C " + scratch_path + ").\n"));
    fault::fail("popen", 2, ENOMEM);
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), -1);
    EXPECT_TRUE(says("cmpnt_system_cmd_run fail, buf(" + scratch_path + "/data.tar.gz -C " +
                     scratch_path + ").\n"));
}

TEST_F(Unpack, LaysMembersWithAbsolutePathsIntoTheScratchDirectoryToo) {
    write_file("/opt/victim/file", "good");
    ASSERT_TRUE(PackageTree().pack_without_inner_archive(package));
    ASSERT_EQ(
        system("cd /opt && tar -czPf data.tar.gz /opt/victim/file && tar -cf base.ipk data.tar.gz"),
        0);
    write_file("/opt/victim/file", "untouched");
    cmpnt_unzip_safe_verify_file(package);
    EXPECT_EQ(read_file("/opt/victim/file"), "untouched");
    EXPECT_EQ(read_file(scratch_path + "/opt/victim/file"), "good");
}

// The archive's first member, two blocks long, is cut off: its second is a hard link to it.
TEST_F(Unpack, LinksNoFileOfTheDevice) {
    make_directories("/opt/a/b");
    for (const char *victim : {"/opt/a/victim", "../victim"}) {
        write_file("/opt/a/victim", "untouched");
        const std::string name(victim);
        ASSERT_EQ(system(("cd /opt/a/b && ln -f ../victim here && tar -cPf links.tar " + name +
                          " here && rm here && tail -c +1025 links.tar | gzip > data.tar.gz && "
                          "tar -cf /opt/base.ipk data.tar.gz")
                             .c_str()),
                  0);
        EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), -1) << victim;
        EXPECT_FALSE(exists(scratch_path + "/here"));
    }
}

TEST_F(Unpack, RefusesMembersThatLeadUpwards) {
    write_file("/opt/victim", "good");
    make_directories("/opt/a/b");
    ASSERT_EQ(system("cd /opt/a/b && tar -czPf data.tar.gz ../../victim && "
                     "tar -cf /opt/base.ipk data.tar.gz"),
              0);
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), -1);
    EXPECT_TRUE(says("cmpnt_system_cmd_run fail, buf(" + scratch_path + "/data.tar.gz -C " +
                     scratch_path + ").\n"));
    EXPECT_FALSE(exists("/var/cache/opkg/victim"));
    EXPECT_FALSE(exists("/var/cache/opkg/cmpnt_safe_verify/victim"));
}

// Of one archive the links out of it wait until all else is unpacked; those of the archive before it
// do not.
TEST_F(Unpack, WritesNothingThroughALinkOfTheOuterArchive) {
    make_directories("/opt/victim/bin");
    ASSERT_EQ(system("mkdir -p /opt/in/usr/bin /opt/out && echo evil > /opt/in/usr/bin/evil && "
                     "tar -czf /opt/out/data.tar.gz -C /opt/in usr/bin/evil && "
                     "ln -s /opt/victim /opt/out/usr && tar -czf /opt/base.ipk -C /opt/out ."),
              0);
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), 0);
    EXPECT_FALSE(exists("/opt/victim/bin/evil"));
    EXPECT_EQ(read_file(scratch_path + "/usr/bin/evil"), "evil\n");
}

TEST_F(Unpack, WritesNothingThroughALinkThatAnEarlierPackageLeft) {
    make_directories("/opt/victim/bin");
    make_directories(scratch_path);
    ASSERT_EQ(symlink("/opt/victim", (scratch_path + "/usr").c_str()), 0);
    ASSERT_EQ(system("mkdir -p /opt/out/usr/bin && echo evil > /opt/out/usr/bin/evil && "
                     "tar -czf /opt/out/data.tar.gz -C /opt/out usr/bin/evil && "
                     "tar -czf /opt/base.ipk -C /opt/out usr/bin/evil data.tar.gz"),
              0);
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), 0);
    EXPECT_FALSE(exists("/opt/victim/bin/evil"));
    EXPECT_TRUE(exists(scratch_path + "/usr/bin/evil"));
}

// The link leads nowhere, until the inner archive brings the directory from which it climbs.
TEST_F(Unpack, WritesNothingThroughALinkThatLeadsOutOnlyLater) {
    make_directories("/opt/victim");
    ASSERT_EQ(
        system("mkdir -p /opt/out /opt/in/later /opt/in/way && echo evil > /opt/in/way/evil && "
               "tar -czf /opt/out/data.tar.gz -C /opt/in later way/evil && "
               "ln -s later/../../../../../../opt/victim /opt/out/way && "
               "tar -czf /opt/base.ipk -C /opt/out ."),
        0);
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), 0);
    EXPECT_FALSE(exists("/opt/victim/evil"));
    EXPECT_EQ(read_file(scratch_path + "/way/evil"), "evil\n");
}

// The link stays within the directory where it lies, and leads out from where a hard link has it.
TEST_F(Unpack, WritesNothingThroughALinkThatTheInnerArchiveCopies) {
    make_directories("/opt/victim");
    ASSERT_EQ(
        system("mkdir -p /opt/out/1/2/3/4/5 /opt/out/opt/victim /opt/in/1/2/3/4/5 && cd /opt/in "
               "&& ln -s ../../../../../opt/victim 1/2/3/4/5/link && ln 1/2/3/4/5/link way && "
               "cp -d 1/2/3/4/5/link /opt/out/1/2/3/4/5/link && "
               "tar -cf links.tar 1/2/3/4/5/link way && rm way && mkdir way && "
               "echo evil > way/evil && tar -cf file.tar way/evil && "
               // without the first member, a block long, "way" is a hard link to what is there
               "(dd if=links.tar bs=512 skip=1 count=1 && cat file.tar) 2>/dev/null | "
               "gzip > /opt/out/data.tar.gz && tar -czf /opt/base.ipk -C /opt/out ."),
        0);
    cmpnt_unzip_safe_verify_file(package);
    EXPECT_FALSE(exists("/opt/victim/evil"));
}

// The walk does not follow links: what is installed under one would not be looked at.
TEST_F(Unpack, LaysNoFileBehindALinkOfTheOuterArchive) {
    ASSERT_EQ(system("mkdir -p /opt/in/usr/lib/modules /opt/out/usr/lib /opt/out/elsewhere && "
                     "echo evil > /opt/in/usr/lib/modules/evil && "
                     "tar -czf /opt/out/data.tar.gz -C /opt/in usr/lib/modules/evil && "
                     "ln -s ../../elsewhere /opt/out/usr/lib/modules && "
                     "tar -czf /opt/base.ipk -C /opt/out ."),
              0);
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), 0);
    EXPECT_TRUE(names_in(scratch_path + "/elsewhere").empty());
    list_hash("/usr/lib/modules/evil", "d");
    platform.digest_result = 1;
    EXPECT_EQ(cmpnt_global_hash_file_verify((scratch_path + "/usr/lib").c_str()), -1);
}

TEST_F(Unpack, TakesNoLinkForTheInnerArchive) {
    ASSERT_EQ(system("mkdir -p /opt/in /opt/out && tar -czf /opt/out/real.tar.gz -C /opt/in . && "
                     "ln -s real.tar.gz /opt/out/data.tar.gz && "
                     "tar -czf /opt/base.ipk -C /opt/out ."),
              0);
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), -1);
    EXPECT_TRUE(says("file(" + scratch_path + "/data.tar.gz) is not exist.\n"));
}

TEST_F(Unpack, WaitsForNobodyToFillAPipe) {
    const Deadline deadline;
    ASSERT_EQ(mkfifo("/opt/pipe.ipk", 0600), 0);
    EXPECT_EQ(cmpnt_unzip_safe_verify_file("/opt/pipe.ipk"), -1);
    EXPECT_TRUE(says("cmpnt_popen_cmd_run fail, buf(/opt/pipe.ipk -C " + scratch_path + ").\n"));
    const PackageTree tree;
    ASSERT_EQ(mkfifo("/opt/package/outer/data.tar.gz", 0600), 0);
    ASSERT_TRUE(tree.pack_without_inner_archive(package));
    EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), -1);
    EXPECT_TRUE(says("cmpnt_system_cmd_run fail, buf(" + scratch_path + "/data.tar.gz -C " +
                     scratch_path + ").\n"));
}

TEST_F(Unpack, ReadsFromNoTerminal) {
    EXPECT_EQ(cmpnt_unzip_safe_verify_file("/dev/null"), -1);
    EXPECT_EQ(fault::calls("popen"), 0);
}

TEST_F(Unpack, FailsQuietlyWhereItCannotLookForSuchLinks) {
    ASSERT_TRUE(PackageTree().file("/usr/bin/x").pack(package));
    for (int call : {1, 4}) {
        fault::fail("readdir64", call, EIO);
        EXPECT_EQ(cmpnt_unzip_safe_verify_file(package), -1) << call;
        fault::reset();
    }
    EXPECT_FALSE(exists(trace_path()));
}
