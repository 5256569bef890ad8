// What a base package installs into trusted directories: links, odd files, deep and long paths.
#include <errno.h>
#include <string.h>

#include "tests/attacks/attack_table.hh"

namespace {

const char hello[] = "/usr/bin/hello";
const char start_link[] = "/etc/rc.d/rc3.d/S20hello";
const std::string no_tree = "cmpnt_safe_verify: cmpnt_hash_file_verify fail";

std::string in_scratch(const std::string &path) { return scratch_folder + path; }

std::function<void()> package(const std::string &inner) {
    return [=] { make_package(inner); };
}

// A package that brings this start-up link, and what belongs to it.
std::function<void()> start_up(const std::string &target, const std::string &before = "true") {
    return package(before +
                   " && mkdir -p etc/init.d etc/rc.d/rc3.d && "
                   "echo 'start hello' >etc/init.d/hello && ln -s " +
                   target + " etc/rc.d/rc3.d/S20hello");
}

Texts unopened(const std::string &directory, int levels) {
    return Texts{"cmpnt_global_hash_file_verify: opendir path(" + directory.substr(0, 259) +
                 ") fail."} +
           Texts(static_cast<size_t>(levels),
                 "cmpnt_global_hash_file_verify: cmpnt_global_hash_file_verify fail") +
           Texts{no_tree};
}

class TreeAttacks : public AttackTest {};

TEST_F(TreeAttacks, WithFiles) {
    const Texts refused = refused_file(hello, 0);
    expect({
        {"another byte", base_package,
         package("mkdir -p usr/bin && echo 'echo hullo' >usr/bin/hello"), -1, refused},
        {"an empty one", base_package, package("mkdir -p usr/bin && touch usr/bin/hello"), -1,
         refused},
        {"one that is not listed",
         base_package,
         package("mkdir -p usr/bin sbin && echo x >usr/bin/new && cp usr/bin/new sbin/hello && "
                 "chmod 4755 usr/bin/new"),
         0,
         {}},
        {"none of the listed ones", base_package, package("mkdir -p usr/bin lib"), 0, {}},
        {"a directory for a listed one",
         base_package,
         package("mkdir -p usr/bin/hello && echo x >usr/bin/hello/x"),
         0,
         {}},
        {"one in a directory that begins like a trusted one",
         base_package,
         [] {
             write_global_list(good_global_list() + list_line("x", "/binx/hello") +
                               list_line("x", "/library/hello"));
             make_package("mkdir binx library && echo y >binx/hello && echo y >library/hello");
         },
         0,
         {}},
        {"a listed one outside of the trusted directories",
         base_package,
         [] {
             write_global_list(good_global_list() + list_line("x", "/etc/passwd"));
             make_package("mkdir etc && echo y >etc/passwd");
         },
         0,
         {}},
        {"a hard link of a listed one", base_package,
         package("mkdir -p usr/bin && echo sing >usr/bin/a && ln usr/bin/a usr/bin/hello"), -1,
         refused},
        {"a hard link of a listed one to a file elsewhere", base_package,
         package("mkdir -p opt usr/bin && echo sing >opt/a && ln opt/a usr/bin/hello"), -1,
         refused},
        {"a directory that cannot be read", base_package,
         package("mkdir -p usr/bin && echo sing >usr/bin/hello && chmod 0 usr/bin"), -1, refused},
    });
}

TEST_F(TreeAttacks, WithLinks) {
    const auto link = [](const std::string &target) {
        return package("mkdir -p usr/bin && echo sing >usr/bin/evil && ln -s " + target +
                       " usr/bin/hello");
    };
    expect({
        {"to another file of the package", base_package, link("evil"), 0, {}},
        {"to a file of the device", base_package, link("/opt/canary/bin/hello"), 0, {}},
        {"up and out", base_package, link("../../../../../../../opt/canary/bin/hello"), 0, {}},
        {"to nowhere", base_package, link("nowhere"), 0, {}},
        {"to itself", base_package, link("hello"), 0, {}},
        {"for a directory, with a listed file behind it",
         base_package,
         [] {
             write_global_list(list_line("x", "/usr/lib/modules/hello"));
             make_package(
                 "mkdir -p usr/lib/elsewhere && ln -s elsewhere usr/lib/modules && "
                 "echo y >usr/lib/elsewhere/hello");
         },
         0,
         {}},
        {"to the directory above",
         base_package,
         package("mkdir -p usr/lib/a && ln -s .. usr/lib/a/up && ln -s . usr/lib/a/here"),
         0,
         {}},
    });
}

TEST_F(TreeAttacks, WithStartUpLinks) {
    const auto refused = [](int ret) { return refused_file(start_link, 1, ret); };
    expect({
        {"to the listed script", base_package, start_up("../../init.d/hello"), 0, {}},
        {"to another script", base_package,
         start_up("../../init.d/evil", "mkdir -p etc/init.d && echo sing >etc/init.d/evil"), -1,
         refused(1)},
        {"to a file of the device", base_package, start_up("/opt/canary/bin/hello"), -1,
         refused(1)},
        {"to the script by an absolute path", base_package, start_up("/etc/init.d/hello"), -1,
         refused(2)},
        {"to nowhere", base_package, start_up("nowhere"), -1, refused(2)},
        {"to itself", base_package, start_up("S20hello"), -1, refused(2)},
        {"to a directory", base_package, start_up("../../init.d"), -1, refused(2)},
        {"to a pipe", base_package,
         start_up("../pipe", "mkdir -p etc/rc.d && mkfifo etc/rc.d/pipe"), -1, refused(2)},
        {"to a device without an end", base_package, start_up("/dev/zero"), -1, refused(2)},
        {"that is not listed",
         base_package,
         start_up("../../init.d/hello",
                  "mkdir -p etc/rc.d/rc3.d && "
                  "ln -s /opt/canary/bin/hello etc/rc.d/rc3.d/S99evil"),
         0,
         {}},
        {"for which there is a file", base_package,
         package("mkdir -p etc/rc.d/rc3.d && echo sing >etc/rc.d/rc3.d/S20hello"), -1, refused(1)},
        {"for which there is a file of the same content",
         base_package,
         package("mkdir -p etc/rc.d/rc3.d && echo 'start hello' >etc/rc.d/rc3.d/S20hello"),
         0,
         {}},
        {"in a directory that is a link",
         base_package,
         package("mkdir -p etc/rc.d/evil && echo sing >etc/rc.d/evil/S20hello && "
                 "ln -s evil etc/rc.d/rc3.d"),
         0,
         {}},
    });
}

TEST_F(TreeAttacks, WithTrustedDirectories) {
    const auto list = [](const std::string &path, const std::function<void()> &then) {
        return [=] {
            write_global_list(good_global_list() + list_line("x", path));
            then();
        };
    };
    const auto bin_link = package(
        "mkdir -p usr/bin && echo 'echo hello' >usr/bin/hello && "
        "ln -s usr/bin bin");
    const auto canary_link = package("ln -s /opt/canary/bin lib64");
    expect({
        {"a link to another of them", base_package, bin_link, 0, {}},
        {"a link to another of them, with a file listed under its name", base_package,
         list("/bin/hello", bin_link), -1, refused_file("/bin/hello", 0)},
        {"a link to the device", base_package, canary_link, 0, {}},
        {"a link to the device, with a file listed there", base_package,
         list("/lib64/hello", canary_link), -1, refused_file("/lib64/hello", 0)},
        {"a link above one", base_package,
         package("mkdir -p u/bin && echo sing >u/bin/hello && ln -s u usr"), -1,
         refused_file(hello, 0)},
        {"a link to itself", base_package, package("ln -s lib64 lib64"), -1,
         unopened(in_scratch("/lib64"), 0)},
        {"a link to nowhere", base_package, package("ln -s nowhere lib64"), -1,
         unopened(in_scratch("/lib64"), 0)},
        {"a file", base_package, package("touch sbin"), -1, unopened(in_scratch("/sbin"), 0)},
        {"a pipe", base_package, package("mkfifo sbin"), -1, unopened(in_scratch("/sbin"), 0)},
        {"the directory of start-up links, a link to the scripts",
         base_package,
         package("mkdir -p etc/init.d && echo 'start hello' >etc/init.d/hello && "
                 "ln -s init.d etc/rc.d"),
         0,
         {}},
        {"the last of them, with a bad file", base_package,
         list("/etc/rc.d/f", package("mkdir -p etc/rc.d && echo y >etc/rc.d/f")), -1,
         refused_file("/etc/rc.d/f", 0)},
    });
}

// A path has room for 259 bytes. What is longer cannot be told apart.
TEST_F(TreeAttacks, WithLongPaths) {
    const std::string folder = "/usr/lib/";
    // Below the folder, with a full path of this many bytes.
    const auto name = [=](size_t length) {
        return folder + std::string(length - in_scratch(folder).size(), 'n');
    };
    const auto file = [](const std::string &path, const std::string &content = "x") {
        const std::string relative = path.substr(1);
        return [=] {
            write_global_list(list_line("x\n", path) + list_line("x\n", path.substr(0, 212)));
            make_package("mkdir -p " + relative.substr(0, relative.rfind('/')) + " && echo " +
                         content + " >" + relative);
        };
    };
    const auto directory = [](const std::string &path) {
        return package("mkdir -p " + path.substr(1));
    };
    const std::string longest = "/opt/" + std::string(255, 'n');
    expect({
        {"a file of 259 bytes", base_package, file(name(259)), 0, {}},
        {"a bad file of 259 bytes", base_package, file(name(259), "y"), -1,
         refused_file(name(259), 0)},
        {"a file of 260 bytes", base_package, file(name(260)), -1,
         unopened(in_scratch(name(260)), 0)},
        {"a directory of 259 bytes", base_package, directory(name(259)), 0, {}},
        {"a directory of 260 bytes", base_package, directory(name(260)), -1,
         unopened(in_scratch(name(260)), 0)},
        {"a file in a directory of 257 bytes", base_package, file(name(257) + "/f"), 0, {}},
        {"a bad file in a directory of 257 bytes", base_package, file(name(257) + "/f", "y"), -1,
         refused_file(name(257) + "/f", 1)},
        {"a file in a directory of 258 bytes", base_package, file(name(258) + "/f"), -1,
         unopened(in_scratch(name(258) + "/f"), 1)},
        {"a file in a directory of 259 bytes", base_package, file(name(259) + "/f"), -1,
         unopened(in_scratch(name(259) + "/f"), 1)},
        {"a directory in a directory of 259 bytes", base_package, directory(name(259) + "/d/d/d"),
         -1, unopened(in_scratch(name(259) + "/d"), 1)},
        {"a pipe of 300 bytes",
         base_package,
         package("mkdir -p usr/lib && mkfifo usr/lib/" + std::string(244, 'p')),
         0,
         {}},
        {"a file of 255 bytes", base_package, file(folder + std::string(255, 'n')), -1,
         unopened(in_scratch(folder + std::string(255, 'n')), 0)},
        {"a file of 255 bytes elsewhere", base_package, file(longest), 0, {}},
    });
}

std::string deep(int levels) {
    std::string path;
    for (int i = 0; i < levels; i++) {
        path += "/d";
    }
    return path;
}

TEST_F(TreeAttacks, WithDeepTrees) {
    const std::string root = in_scratch("/usr/lib");
    const int levels_with_room = static_cast<int>((259 - root.size()) / 2);
    const auto tree = [](const std::string &top, int levels, const std::string &format = "gnu") {
        const std::string path = top + deep(levels);
        return package("mkdir -p ." + path + " && echo x >." + path +
                       "/f && tar --format=" + format + " -czf ../data.tar.gz .");
    };
    const auto refused = unopened(root + deep(300), levels_with_room);
    expect({
        {"as deep as paths reach",
         base_package,
         package("mkdir -p ./usr/lib" + deep(levels_with_room)),
         0,
         {}},
        {"a level deeper", base_package, package("mkdir -p ./usr/lib" + deep(levels_with_room + 1)),
         -1, refused},
        {"300 levels", base_package, tree("/usr/lib", 300), -1, refused},
        {"300 levels, in another format", base_package, tree("/usr/lib", 300, "posix"), -1,
         refused},
        {"1500 levels", base_package, tree("/usr/lib", 1500), -1, refused},
    });
}

// Where nobody looks, the tree passes, and leaves what is too deep to be removed.
TEST_F(TreeAttacks, WithADeepTreeElsewhere) {
    const std::string root = in_scratch("/opt");
    constexpr int longest_removed = 511;
    Texts unremoved = {"cmpnt_remove: cmpnt_remove error."};
    const auto not_empty = [&](const std::string &path) {
        unremoved.push_back("cmpnt_remove: rmdir error, target(" + path + "), error(" +
                            strerror(ENOTEMPTY) + ")");
    };
    for (int i = (longest_removed - static_cast<int>(root.size())) / 2; i >= 0; i--) {
        not_empty(root + deep(i));
    }
    not_empty(scratch_folder);
    const auto then = [] {
        EXPECT_EQ(cmpnt_safe_verify(base_package, 0, 0, 0), 0);
        put_bad_package();
        EXPECT_EQ(cmpnt_safe_verify(base_package, 0, 0, 0), -1);
    };
    expect({{"300 levels",
             base_package,
             package("mkdir -p ./opt" + deep(300)),
             0,
             unremoved,
             {},
             then}});
}

}  // namespace
