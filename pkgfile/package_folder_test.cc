#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>

#include "tests/support/device_test.hh"

namespace {

using Names = std::vector<std::string>;

constexpr char walker[] = "cmpnt_traverse_folder";
constexpr char folder[] = "/opt/d";
constexpr char too_much[] = "file num is too much.\n";

Names sorted(Names names) {
    std::sort(names.begin(), names.end());
    return names;
}

std::string in_folder(const std::string &name) { return std::string(folder) + "/" + name; }

void make_socket(const std::string &path) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof(address.sun_path));
    memcpy(address.sun_path, path.c_str(), path.size());
    const int fd = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_GE(fd, 0);
    EXPECT_EQ(bind(fd, reinterpret_cast<sockaddr *>(&address), sizeof(address)), 0);
    close(fd);
}

void make_packages(const std::string &directory, int count) {
    make_directories(directory);
    for (int i = 0; i < count; i++) {
        write_file(directory + "/" + std::to_string(i) + ".bin", "");
    }
}

// A directory below /tmp whose path has this many bytes, more than 105.
std::string directory_of_length(size_t length) {
    std::string path = "/tmp/" + std::string(100, 'd');
    while (length - path.size() > 201) {
        path += "/" + std::string(100, 'd');
    }
    path += "/" + std::string(length - path.size() - 1, 'e');
    make_directories(path);
    return path;
}

}  // namespace

class PackageFolder : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        make_directories(folder);
    }
    void TearDown() override {
        cmpnt_free_file_name(&record);
        DeviceTest::TearDown();
    }

    static testing::AssertionResult says(const std::string &message) {
        return logged("CMPNT_ERROR", walker, message);
    }
    int32_t traverse(const std::string &path = folder) {
        return cmpnt_traverse_folder(path.c_str(), &record);
    }
    // The names listed, without the path of the folder.
    Names listed(const std::string &path = folder) const {
        Names names;
        for (int32_t i = 0; i < record.count; i++) {
            const std::string name = record.names[i];
            EXPECT_EQ(name.substr(0, path.size() + 1), path + "/");
            names.push_back(name.substr(path.size() + 1));
        }
        return sorted(names);
    }
    bool names_are_gone() const {
        return std::all_of(std::begin(record.names), std::end(record.names),
                           [](const char *name) { return name == nullptr; });
    }

    file_name_list record = {};
};

TEST_F(PackageFolder, ListsPackagesWithTheirSizes) {
    write_file(in_folder("a.bin"), "12345");
    write_file(in_folder("b.deb"), "123");
    write_file(in_folder("empty.bin"), "");
    EXPECT_EQ(traverse(), 0);
    EXPECT_EQ(listed(), (Names{"a.bin", "b.deb", "empty.bin"}));
    EXPECT_EQ(record.count, 3);
    EXPECT_EQ(record.total_size, 8u);
    EXPECT_EQ(record.first_text, nullptr);
    EXPECT_EQ(record.second_text, nullptr);
    EXPECT_EQ(names_in(folder).size(), 3u);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(PackageFolder, ListsNothingInAnEmptyDirectory) {
    EXPECT_EQ(traverse(), 0);
    EXPECT_EQ(record.count, 0);
    EXPECT_EQ(record.total_size, 0u);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(PackageFolder, JoinsNamesToThePathAsItIs) {
    write_file(in_folder("x.bin"), "");
    EXPECT_EQ(traverse("/opt/d/"), 0);
    ASSERT_EQ(symlink(folder, "/tmp/link"), 0);
    EXPECT_EQ(traverse("/tmp/link"), 0);
    ASSERT_EQ(chdir(folder), 0);
    EXPECT_EQ(traverse("."), 0);
    ASSERT_EQ(chdir("/"), 0);
    ASSERT_EQ(record.count, 3);
    EXPECT_STREQ(record.names[0], "/opt/d//x.bin");
    EXPECT_STREQ(record.names[1], "/tmp/link/x.bin");
    EXPECT_STREQ(record.names[2], "./x.bin");
}

// ---- what goes and what stays ----

TEST_F(PackageFolder, ListsWhateverHasAPackageSuffix) {
    const Names names = {"x.bin",         "x.deb",         ".bin",          ".deb",
                         "..bin",         "a.b.bin",       "a.sign.deb",    "with blank.bin",
                         "q'\"`.bin",     "100%s%n%d.bin", "new\nline.bin", "-rf.bin",
                         "$(reboot).bin", "*.bin",         "a..deb",        "\\.bin",
                         "\xff\x01.bin",  ".hidden.deb"};
    for (const std::string &name : names) {
        write_file(in_folder(name), "1");
    }
    EXPECT_EQ(traverse(), 0);
    EXPECT_EQ(listed(), sorted(names));
    EXPECT_EQ(names_in(folder), sorted(names));
    EXPECT_EQ(record.total_size, names.size());
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(PackageFolder, KeepsSideFilesWithoutListingThem) {
    const Names names = {"x.sign",     "x.hash",     ".sign",          ".hash",
                         "a.bin.sign", "a.deb.hash", "new\nline.sign", "100%n.hash"};
    for (const std::string &name : names) {
        write_file(in_folder(name), "1");
    }
    EXPECT_EQ(traverse(), 0);
    EXPECT_EQ(record.count, 0);
    EXPECT_EQ(record.total_size, 0u);
    EXPECT_EQ(names_in(folder), sorted(names));
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(PackageFolder, DeletesWhateverElseIsNoDirectory) {
    const Names names = {"plain",    "ends.",   "a.tar.gz",   "x.BIN",  "x.Deb",   "x.SIGN",
                         "x.binx",   "x.bi",    "x.bin ",     "x.bin.", ".hidden", "...",
                         "..x",      "bin",     "100%s%n",    "x.%s%n", "q'\"`",   "new\nline",
                         "x.bin\n",  "-rf",     "$(reboot)",  "*",      "?.x",     "\\",
                         "\xff\x01", "x.sign~", "x.multiple", " "};
    for (const std::string &name : names) {
        write_file(in_folder(name), "1");
    }
    write_file(in_folder("z.bin"), "1");
    write_file(in_folder("z.sign"), "1");
    EXPECT_EQ(traverse(), 0);
    EXPECT_EQ(names_in(folder), (Names{"z.bin", "z.sign"}));
    EXPECT_EQ(listed(), Names{"z.bin"});
    EXPECT_EQ(record.total_size, 1u);
}

TEST_F(PackageFolder, SaysWhatItDeletes) {
    write_file(in_folder("a.tar.gz"), "");
    EXPECT_EQ(traverse(), 0);
    EXPECT_EQ(
        trace_messages(),
        (Names{"error cmpnt_file_type_check: file_name(/opt/d/a.tar.gz), type(.gz) is not "
               "support!\n",
               "trace cmpnt_traverse_folder: file type(4) not support, continue traverse, delete "
               "file(/opt/d/a.tar.gz).\n"}));
    EXPECT_TRUE(logged("CMPNT_TRACE", walker,
                       "file type(4) not support, continue traverse, delete "
                       "file(/opt/d/a.tar.gz).\n"));
    forget_log();
    write_file(in_folder("plain"), "");
    EXPECT_EQ(traverse(), 0);
    EXPECT_EQ(trace_messages(),
              (Names{"error get_file_type: The file_name(/opt/d/plain) type is invalid.\n",
                     "error cmpnt_file_type_check: get_file_type fail, path_name(/opt/d/plain), "
                     "type().\n",
                     "trace cmpnt_traverse_folder: file type(0) not support, continue traverse, "
                     "delete file(/opt/d/plain).\n"}));
}

TEST_F(PackageFolder, LooksForTheSuffixInTheWholePath) {
    for (const std::string name : {"/opt/d.x", "/opt/d.bin", "/opt/d.sign"}) {
        forget_log();
        write_file(name + "/plain", "");
        write_file(name + "/x.bin", "");
        EXPECT_EQ(traverse(name), 0);
        EXPECT_EQ(names_in(name), Names{"x.bin"});
        EXPECT_TRUE(logged(
            "CMPNT_ERROR", "cmpnt_file_type_check",
            "file_name(" + name + "/plain), type(" + name.substr(6) + "/plain) is not support!\n"));
        EXPECT_TRUE(logged(
            "CMPNT_TRACE", walker,
            "file type(4) not support, continue traverse, delete file(" + name + "/plain).\n"));
    }
    EXPECT_EQ(record.count, 3);
}

TEST_F(PackageFolder, TakesEachNameForItselfWhateverCameBefore) {
    // Whichever way they are read, names without a suffix follow side files and packages.
    for (int i = 0; i < 8; i++) {
        const std::string number = std::to_string(i);
        write_file(in_folder(number + "a.sign"), "");
        write_file(in_folder(number + "b"), "");
        write_file(in_folder(number + "c.bin"), "");
        write_file(in_folder(number + "d."), "");
        write_file(in_folder(number + "e.hash"), "");
        write_file(in_folder(number + "f"), "");
    }
    EXPECT_EQ(traverse(), 0);
    EXPECT_EQ(record.count, 8);
    EXPECT_EQ(names_in(folder).size(), 24u);
    int untyped = 0;
    for (const TraceLine &line : trace_lines()) {
        untyped += line.message.compare(0, 13, "file type(0) ") == 0;
    }
    EXPECT_EQ(untyped, 24);
}

TEST_F(PackageFolder, LeavesSubdirectoriesAlone) {
    const Names names = {"sub", "x.bin", "x.deb", "x.sign", "x.txt", ".hidden", "...", "end."};
    for (const std::string &name : names) {
        write_file(in_folder(name) + "/plain", "1");
        write_file(in_folder(name) + "/in.bin", "1");
    }
    EXPECT_EQ(traverse(), 0);
    EXPECT_EQ(record.count, 0);
    EXPECT_EQ(record.total_size, 0u);
    EXPECT_EQ(names_in(folder), sorted(names));
    for (const std::string &name : names) {
        EXPECT_EQ(names_in(in_folder(name)), (Names{"in.bin", "plain"}));
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(PackageFolder, NeverFollowsLinks) {
    const std::string targets[] = {"/tmp/target.bin", "/tmp/directory", "/tmp/nowhere"};
    write_file(targets[0], "much more than a path");
    write_file(targets[1] + "/plain", "1");
    Names listed_links, kept;
    for (int i = 0; i < 3; i++) {
        const std::string number = std::to_string(i);
        for (const std::string suffix : {".bin", ".deb", ".sign", ".hash", ".txt", ".", ""}) {
            const std::string name = number + suffix;
            ASSERT_EQ(symlink(targets[i].c_str(), in_folder(name).c_str()), 0);
            if (suffix == ".bin" || suffix == ".deb") {
                listed_links.push_back(name);
            }
            if (suffix.size() > 1 && suffix != ".txt") {
                kept.push_back(name);
            }
        }
    }
    EXPECT_EQ(traverse(), 0);
    EXPECT_EQ(listed(), sorted(listed_links));
    EXPECT_EQ(names_in(folder), sorted(kept));
    EXPECT_EQ(record.total_size, 2 * (targets[0].size() + targets[1].size() + targets[2].size()));
    EXPECT_EQ(read_file(targets[0]), "much more than a path");
    EXPECT_EQ(names_in(targets[1]), Names{"plain"});
}

TEST_F(PackageFolder, TakesPipesAndSocketsForFiles) {
    for (const std::string suffix : {".bin", ".sign", ".txt", ""}) {
        ASSERT_EQ(mkfifo(in_folder("pipe" + suffix).c_str(), 0600), 0);
        make_socket(in_folder("socket" + suffix));
    }
    EXPECT_EQ(traverse(), 0);
    EXPECT_EQ(listed(), (Names{"pipe.bin", "socket.bin"}));
    EXPECT_EQ(names_in(folder), (Names{"pipe.bin", "pipe.sign", "socket.bin", "socket.sign"}));
}

TEST_F(PackageFolder, TakesNamesOf255Bytes) {
    const std::string package = std::string(251, 'p') + ".bin";
    ASSERT_EQ(chdir("/opt"), 0);
    for (const std::string &name : {package, std::string(250, 's') + ".sign", std::string(255, 'n'),
                                    "x." + std::string(253, 'x')}) {
        write_file("d/" + name, "1");
    }
    EXPECT_EQ(traverse("d"), 0);
    ASSERT_EQ(chdir("/"), 0);
    EXPECT_EQ(listed("d"), Names{package});
    EXPECT_EQ(names_in(folder), (Names{package, std::string(250, 's') + ".sign"}));
}

TEST_F(PackageFolder, NeitherSkipsNorRepeatsWhileItDeletes) {
    // More entries than one read of a directory brings.
    for (int i = 0; i < 400; i++) {
        write_file(in_folder(std::to_string(i) + std::string(180, 'x')), "");
        if (i % 4 == 0) {
            write_file(in_folder(std::to_string(i) + std::string(180, 'x') + ".bin"), "");
        }
    }
    g_cmpnt_dbg_level = 0;
    const int removed = fault::calls("remove");
    EXPECT_EQ(traverse(), 0);
    EXPECT_EQ(fault::calls("remove") - removed, 400);
    EXPECT_EQ(record.count, 100);
    EXPECT_EQ(listed(), names_in(folder));
}

TEST_F(PackageFolder, GoesOnAfterAFileThatStays) {
    write_file(in_folder("a"), "");
    write_file(in_folder("b"), "");
    write_file(in_folder("x.bin"), "");
    fault::fail("remove", 1, EBUSY);
    EXPECT_EQ(traverse(), 0);
    EXPECT_EQ(record.count, 1);
    EXPECT_EQ(names_in(folder).size(), 2u);
}

// ---- limits ----

TEST_F(PackageFolder, Holds300Packages) {
    make_packages(folder, 300);
    make_directories(in_folder("sub"));
    make_directories(in_folder("sub.bin"));
    EXPECT_EQ(traverse(), 0);
    EXPECT_EQ(record.count, 300);
    EXPECT_EQ(listed(), [] {
        Names names;
        for (int i = 0; i < 300; i++) {
            names.push_back(std::to_string(i) + ".bin");
        }
        return sorted(names);
    }());
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(PackageFolder, FailsAtThe301stPackage) {
    make_packages(folder, 301);
    const int descriptors = open_descriptors();
    EXPECT_EQ(traverse(), -1);
    EXPECT_TRUE(says(too_much));
    EXPECT_EQ(trace_lines().size(), 1u);
    EXPECT_EQ(record.count, 300);
    EXPECT_TRUE(names_are_gone());
    EXPECT_EQ(names_in(folder).size(), 301u);
    EXPECT_EQ(open_descriptors(), descriptors);
    cmpnt_free_file_name(&record);  // once more is harmless
}

TEST_F(PackageFolder, FailsAtAnyFileOnceItHolds300) {
    make_packages("/opt/full", 300);
    const Names names = {"x.bin", "x.sign", "x.hash", "a.tar.gz", "plain", "ends."};
    for (const std::string &name : names) {
        forget_log();
        record = {};
        ASSERT_EQ(traverse("/opt/full"), 0);
        const std::string directory = "/opt/" + name + ".d";
        write_file(directory + "/" + name, "1");
        EXPECT_EQ(traverse(directory), -1) << name;
        EXPECT_EQ(trace_messages(), Names{std::string("error ") + walker + ": " + too_much});
        EXPECT_EQ(names_in(directory), Names{name});
        EXPECT_EQ(record.count, 300);
        EXPECT_EQ(record.total_size, 0u);
        EXPECT_TRUE(names_are_gone());
    }
}

TEST_F(PackageFolder, FailsAtALinkToADirectoryOnceItHolds300) {
    make_packages("/opt/full", 300);
    ASSERT_EQ(traverse("/opt/full"), 0);
    ASSERT_EQ(symlink("/opt/full", in_folder("link").c_str()), 0);
    EXPECT_EQ(traverse(), -1);
    EXPECT_TRUE(says(too_much));
    EXPECT_TRUE(exists(in_folder("link")));
    EXPECT_TRUE(names_are_gone());
}

TEST_F(PackageFolder, PassesSubdirectoriesWhenItHolds300) {
    make_packages("/opt/full", 300);
    ASSERT_EQ(traverse("/opt/full"), 0);
    make_directories(in_folder("sub"));
    make_directories(in_folder("sub.bin"));
    EXPECT_EQ(traverse(), 0);
    EXPECT_EQ(record.count, 300);
    EXPECT_NE(record.names[299], nullptr);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(PackageFolder, TakesAsManyStrayFilesAsThereAre) {
    for (int i = 0; i < 320; i++) {
        write_file(in_folder(std::to_string(i)), "");
        write_file(in_folder(std::to_string(i) + ".sign"), "");
    }
    g_cmpnt_dbg_level = 0;
    EXPECT_EQ(traverse(), 0);
    EXPECT_EQ(record.count, 0);
    EXPECT_EQ(names_in(folder).size(), 320u);
}

TEST_F(PackageFolder, AddsToWhatTheRecordHolds) {
    write_file("/opt/a/1.bin", "123");
    write_file("/opt/b/2.deb", "12345");
    write_file("/opt/b/3.bin", "");
    EXPECT_EQ(traverse("/opt/a"), 0);
    EXPECT_EQ(traverse("/opt/b"), 0);
    EXPECT_EQ(record.count, 3);
    EXPECT_EQ(record.total_size, 8u);
    EXPECT_STREQ(record.names[0], "/opt/a/1.bin");
    EXPECT_EQ(sorted({record.names[1], record.names[2]}), (Names{"/opt/b/2.deb", "/opt/b/3.bin"}));
}

TEST_F(PackageFolder, CountsSizesModulo32Bits) {
    for (const char *name : {"a.bin", "b.deb"}) {
        write_file(in_folder(name), "");
        ASSERT_EQ(truncate(in_folder(name).c_str(), 3LL << 30), 0);  // all holes
    }
    write_file(in_folder("c.bin"), "1");
    EXPECT_EQ(traverse(), 0);
    EXPECT_EQ(record.total_size, static_cast<uint32_t>((6LL << 30) + 1));
}

TEST_F(PackageFolder, CountsASizeBeyond32BitsModulo) {
    write_file(in_folder("a.bin"), "");
    ASSERT_EQ(truncate(in_folder("a.bin").c_str(), (4LL << 30) + 5), 0);
    EXPECT_EQ(traverse(), 0);
    EXPECT_EQ(record.total_size, 5u);
}

// ---- paths ----

TEST_F(PackageFolder, TakesPathsOf259Bytes) {
    const std::string directory = directory_of_length(200);
    write_file(directory + "/" + std::string(54, 'p') + ".bin", "1");
    write_file(directory + "/" + std::string(58, 'n'), "1");
    EXPECT_EQ(traverse(directory), 0);
    EXPECT_EQ(listed(directory), Names{std::string(54, 'p') + ".bin"});
    EXPECT_EQ(names_in(directory).size(), 1u);
}

TEST_F(PackageFolder, FailsAtALongerPath) {
    for (const std::string &name :
         {std::string(55, 'p') + ".bin", std::string(59, 'n'), std::string(54, 's') + ".sign"}) {
        forget_log();
        const std::string directory = directory_of_length(200);
        write_file(directory + "/" + name, "1");
        const int descriptors = open_descriptors();
        EXPECT_EQ(traverse(directory), -1);
        EXPECT_TRUE(says("lstat error, errno(" + std::string(strerror(ENAMETOOLONG)) + ")\n"));
        EXPECT_EQ(trace_lines().size(), 1u);
        EXPECT_EQ(names_in(directory), Names{name});
        EXPECT_EQ(open_descriptors(), descriptors);
        remove_tree(directory);
    }
}

TEST_F(PackageFolder, TakesNoOtherPathForAnEntry) {
    // Cut, these would be the directory with a slash, the directory, and a file beside it.
    for (size_t length : {258, 259, 300}) {
        const std::string directory = directory_of_length(length);
        const std::string other = directory.substr(0, 259);
        if (other != directory) {
            write_file(other, "1");
        }
        write_file(directory + "/plain", "1");
        EXPECT_EQ(traverse(directory), -1);
        EXPECT_TRUE(exists(other));
        EXPECT_EQ(names_in(directory), Names{"plain"});
        remove_tree("/tmp/" + std::string(100, 'd'));
    }
    EXPECT_EQ(record.count, 0);
}

TEST_F(PackageFolder, FailsAtALongerPathOfASubdirectoryToo) {
    const std::string directory = directory_of_length(300);
    EXPECT_EQ(traverse(directory), 0);
    make_directories(directory + "/sub");
    EXPECT_EQ(traverse(directory), -1);
    EXPECT_TRUE(exists(directory + "/sub"));
}

// ---- failures ----

TEST_F(PackageFolder, FailsAtAnEntryThatCannotBeExamined) {
    make_packages(folder, 3);
    for (int call : {1, 2, 3}) {
        forget_log();
        record = {};
        const int descriptors = open_descriptors();
        fault::fail("lstat64", call, EACCES);
        EXPECT_EQ(traverse(), -1);
        EXPECT_TRUE(says("lstat error, errno(" + std::string(strerror(EACCES)) + ")\n"));
        EXPECT_EQ(open_descriptors(), descriptors);
        EXPECT_EQ(record.count, call - 1);
        EXPECT_TRUE(names_are_gone());
        EXPECT_EQ(names_in(folder).size(), 3u);
    }
}

TEST_F(PackageFolder, FailsWithoutMemoryForAName) {
    make_packages(folder, 3);
    for (int call : {1, 2, 3}) {
        forget_log();
        record = {};
        const int descriptors = open_descriptors();
        fault::fail("calloc", call, ENOMEM);
        EXPECT_EQ(traverse(), -1);
        EXPECT_TRUE(says("cmpnt_malloc_and_memory fail.\n"));
        EXPECT_EQ(open_descriptors(), descriptors);
        EXPECT_EQ(record.count, call - 1);
        EXPECT_TRUE(names_are_gone());
        EXPECT_EQ(names_in(folder).size(), 3u);
    }
}

TEST_F(PackageFolder, AsksForNoMoreThanAName) {
    write_file(in_folder("x.bin"), "");
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(traverse(), -1);
    EXPECT_EQ(traced("error", "cmpnt_malloc",
                     "malloc failed, size(13), error(" + std::string(strerror(ENOMEM)) + ").\n"),
              1);
}

TEST_F(PackageFolder, FreesWhatEarlierCallsListedToo) {
    make_packages("/opt/a", 5);
    ASSERT_EQ(traverse("/opt/a"), 0);
    make_packages(folder, 1);
    fault::fail("lstat64", 1, EIO);
    EXPECT_EQ(traverse(), -1);
    EXPECT_EQ(record.count, 5);
    EXPECT_TRUE(names_are_gone());
}

TEST_F(PackageFolder, KeepsTheRecordOfADirectoryThatDoesNotOpen) {
    make_packages("/opt/a", 2);
    write_file("/opt/file", "");
    ASSERT_EQ(traverse("/opt/a"), 0);
    for (const std::string path : {"/opt/missing", "/opt/file", ""}) {
        EXPECT_EQ(traverse(path), -1);
        EXPECT_TRUE(says("opendir path(" + path + ") fail.\n"));
    }
    fault::fail("opendir", 1, EMFILE);
    EXPECT_EQ(traverse(), -1);
    EXPECT_TRUE(says("opendir path(/opt/d) fail.\n"));
    EXPECT_EQ(listed("/opt/a"), (Names{"0.bin", "1.bin"}));
}

TEST_F(PackageFolder, RefusesNull) {
    write_file(in_folder("plain"), "");
    EXPECT_EQ(cmpnt_traverse_folder(nullptr, &record), -1);
    EXPECT_TRUE(says("input param is error.\n"));
    EXPECT_EQ(cmpnt_traverse_folder(folder, nullptr), -1);
    EXPECT_EQ(traced("error", walker, "input param is error.\n"), 2);
    EXPECT_EQ(trace_lines().size(), 2u);
    EXPECT_TRUE(exists(in_folder("plain")));
}

TEST_F(PackageFolder, SurvivesARecordThatWasNotZeroed) {
    write_file(in_folder("x.bin"), "");
    for (int32_t count : {-1, INT32_MIN, 301, INT32_MAX}) {
        file_name_list wild = {};
        wild.count = count;
        EXPECT_EQ(cmpnt_traverse_folder(folder, &wild), -1);
        EXPECT_EQ(wild.count, count);
        EXPECT_EQ(names_in(folder), Names{"x.bin"});
    }
}

// ---- whether there is a package at all ----

class DirIsNull : public PackageFolder {};

TEST_F(DirIsNull, IsThreeWithAPackage) {
    write_file(in_folder("x.deb"), "");
    EXPECT_EQ(dir_is_null(folder), 3u);
    make_packages(folder, 299);
    EXPECT_EQ(dir_is_null(folder), 3u);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(DirIsNull, IsThreeWithALinkOfAPackagesName) {
    ASSERT_EQ(symlink("/tmp/nowhere", in_folder("x.bin").c_str()), 0);
    EXPECT_EQ(dir_is_null(folder), 3u);
}

TEST_F(DirIsNull, IsTwoWithoutAPackage) {
    EXPECT_EQ(dir_is_null(folder), 2u);
    write_file(in_folder("x.sign"), "");
    write_file(in_folder("x.hash"), "");
    EXPECT_EQ(dir_is_null(folder), 2u);
    make_packages(in_folder("sub.bin"), 1);
    EXPECT_EQ(dir_is_null(folder), 2u);
    EXPECT_EQ(names_in(folder), (Names{"sub.bin", "x.hash", "x.sign"}));
    EXPECT_EQ(names_in(in_folder("sub.bin")), Names{"0.bin"});
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(DirIsNull, DeletesStrayFiles) {
    write_file(in_folder("a.txt"), "");
    EXPECT_EQ(dir_is_null(folder), 2u);
    EXPECT_TRUE(names_in(folder).empty());
    write_file(in_folder("plain"), "");
    write_file(in_folder("x.bin"), "");
    EXPECT_EQ(dir_is_null(folder), 3u);
    EXPECT_EQ(names_in(folder), Names{"x.bin"});
}

TEST_F(DirIsNull, IsOneWhenListingFails) {
    EXPECT_EQ(dir_is_null("/opt/missing"), 1u);
    EXPECT_TRUE(says("opendir path(/opt/missing) fail.\n"));
    make_packages(folder, 3);
    fault::fail("lstat64", 3, EACCES);
    EXPECT_EQ(dir_is_null(folder), 1u);
    fault::fail("calloc", 2, ENOMEM);
    EXPECT_EQ(dir_is_null(folder), 1u);
    make_packages(folder, 301);
    EXPECT_EQ(dir_is_null(folder), 1u);
    EXPECT_TRUE(says(too_much));
}

TEST_F(DirIsNull, IsZeroForNull) {
    EXPECT_EQ(dir_is_null(nullptr), 0u);
    EXPECT_TRUE(logged("CMPNT_ERROR", "dir_is_null", "param is null.\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
}
