// What lies in a patch directory, and where that lies.
#include <sys/stat.h>
#include <unistd.h>

#include "common/working_record.hh"
#include "tests/attacks/attack_table.hh"

namespace {

const char fix1[] = "hello_1.0-fix1.deb";

std::string in_patch(const std::string &name) { return patch_folder + ("/" + name); }

void put_link(const std::string &path, const std::string &target) {
    remove_tree(path);
    EXPECT_EQ(symlink(target.c_str(), path.c_str()), 0);
}

void put_pipe(const std::string &path) {
    remove_tree(path);
    EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
}

void put_directory(const std::string &path) {
    remove_tree(path);
    make_directories(path);
}

// A signed patch of only a package, in any folder.
void make_patch(const std::string &folder, const std::string &name = fix1) {
    write_file(folder + "/" + name, package_text);
    write_patch_list(list_line(package_text, name), folder);
}

// A path of exactly this many bytes, of a folder that does not exist yet.
std::string folder_of_length(size_t length) {
    std::string path = "/opt";
    while (length - path.size() > 201) {
        path += "/" + std::string(100, 'd');
    }
    return path + "/" + std::string(length - path.size() - 1, 'e');
}

class PatchAttacks : public AttackTest {};

TEST_F(PatchAttacks, WithThePackage) {
    expect({
        {"another byte", patch_package, [] { write_file(patch_package, "another"); }, -1,
         refused_digest(fix1)},
        {"a byte more", patch_package,
         [] { write_file(patch_package, package_text + std::string(1, '\0')); }, -1,
         refused_digest(fix1)},
        {"an empty one", patch_package, [] { write_file(patch_package, ""); }, -1,
         refused_digest(fix1)},
        {"the other package's content", patch_package,
         [] { write_file(patch_package, second_text); }, -1, refused_digest(fix1)},
        {"none", patch_package, [] { remove_tree(patch_package); }, -1, refused_digest(fix1, 2)},
        {"a directory", patch_package, [] { put_directory(patch_package); }, -1,
         refused_digest(fix1, 2)},
        {"a pipe", patch_package, [] { put_pipe(patch_package); }, -1, refused_digest(fix1, 2)},
        {"a link to the same content",
         patch_package,
         [] {
             write_file("/opt/same", package_text);
             put_link(patch_package, "/opt/same");
         },
         0,
         {}},
        {"a link to another file", patch_package, [] { put_link(patch_package, second_package); },
         -1, refused_digest(fix1)},
        {"a link to itself", patch_package, [] { put_link(patch_package, patch_package); }, -1,
         refused_digest(fix1, 2)},
        {"an endless device", patch_package, [] { put_link(patch_package, "/dev/zero"); }, -1,
         refused_digest(fix1, 2)},
        {"one that is not listed", in_patch("new.deb"),
         [] { write_file(in_patch("new.deb"), package_text); }, -1, unlisted("new.deb")},
        {"the list itself", in_patch("patch-sm3.deb"),
         [] { write_file(in_patch("patch-sm3.deb"), good_patch_list()); }, -1,
         unlisted("patch-sm3.deb")},
    });
}

TEST_F(PatchAttacks, WithSmuFiles) {
    const auto put = [](const std::string &name) {
        return [=] { write_file(in_patch(name), "new"); };
    };
    const auto refused = [](const std::string &name) {
        return refused_directory("cmpnt_check_patch_hash_value(" + name + ") fail.");
    };
    const std::string longest = "smu" + std::string(252, 'n');
    const auto nothing_remembered = [] { EXPECT_STREQ(g_variable.verified_patch_directory, ""); };
    expect({
        {"another byte",
         patch_package,
         [] { write_file(patch_file, "another"); },
         -1,
         refused_smu_file("smu_hello"),
         {},
         nothing_remembered},
        {"none, though it is listed", patch_package, [] { remove_tree(patch_file); }, 0, {}},
        {"one that is not listed", patch_package, put("smu_new"), -1, refused("smu_new")},
        {"only the letters", patch_package, put("smu"), -1, refused("smu")},
        {"a blank", patch_package, put("smu new"), -1, refused("smu new")},
        {"a newline", patch_package, put("smu\nnew"), -1, refused("smu\nnew")},
        {"a conversion", patch_package, put("smu%n%s"), -1, refused("smu%n%s")},
        {"255 bytes", patch_package, put(longest), -1, refused(longest)},
        {"255 bytes, listed",
         patch_package,
         [=] {
             write_file(in_patch(longest), "new");
             write_patch_list(good_patch_list() + list_line("new", longest));
         },
         0,
         {}},
        {"a package", in_patch("smu.deb"), put("smu.deb"), -1, refused("smu.deb")},
        {"upper case", patch_package, put("SMU_new"), 0, {}},
        {"a dot first", patch_package, put(".smu_new"), 0, {}},
        {"a directory", patch_package, [] { make_directories(in_patch("smu_new/smu_x")); }, 0, {}},
        {"a link to a changed file",
         patch_package,
         [] { put_link(patch_file, "/opt/canary/bin/hello"); },
         0,
         {}},
        {"a link to nowhere",
         patch_package,
         [] { put_link(in_patch("smu_new"), "nowhere"); },
         0,
         {}},
        {"a pipe", patch_package, [] { put_pipe(patch_file); }, 0, {}},
    });
}

TEST_F(PatchAttacks, WithTheDirectory) {
    const auto patch_in = [](const std::string &folder) { return [=] { make_patch(folder); }; };
    const auto row = [&](const char *name, const std::string &folder) {
        return Attack{name, folder + "/" + fix1, patch_in(folder), 0, {}};
    };
    expect({
        row("a blank", "/opt/a patch"),
        row("commands", "/opt/$(touch x);touch y;`touch z`"),
        row("quotes", "/opt/a'b\"c\\"),
        row("a newline", "/opt/a\nb"),
        row("a conversion", "/opt/%s%n"),
        row("a suffix of its own", "/opt/patch.ipk"),
        {"a link",
         std::string("/opt/link/") + fix1,
         [] { put_link("/opt/link", patch_folder); },
         0,
         {}},
        {"two slashes", std::string("/data//smu_hello//") + fix1, [] {}, 0, {}},
        {"none", std::string("/opt/nowhere/") + fix1, [] {}, -1,
         refused_list(patch_package, "/opt/nowhere/patch-sm3.hash")},
        {"a file", std::string(patch_file) + "/" + fix1, [] {}, -1,
         refused_list(patch_package, std::string(patch_file) + "/patch-sm3.hash")},
    });
}

// Cut at the size of a path, a directory of 259 bytes or more would be the one above it.
TEST_F(PatchAttacks, WithALongDirectory) {
    const auto row = [](const char *name, size_t length, int32_t result) {
        const std::string folder = folder_of_length(length);
        const auto make = [=] {
            make_patch(folder);
            make_patch(folder.substr(0, folder.rfind('/')));
        };
        return Attack{name, folder + "/" + fix1, make, result, {}};
    };
    expect({
        row("258 bytes", 258, 0),
        row("259 bytes", 259, -1),
        row("260 bytes", 260, -1),
        row("519 bytes", 519, -1),
        {"a mebibyte of slashes",
         "/opt" + std::string(1 << 20, '/') + fix1,
         [] { make_patch("/opt"); },
         -1,
         {}},
        {"a mebibyte of name", "/opt/" + std::string(1 << 20, 'n') + ".deb", [] {}, -1,
         refused_list(patch_package, "/opt/patch-sm3.hash")},
    });
}

// Not what one would like, but so it is.
TEST_F(PatchAttacks, WithoutADirectory) {
    ASSERT_EQ(chdir("/opt"), 0);
    const auto list_root_file = [] {
        write_patch_list(good_patch_list() + list_line(package_text, "root.deb"));
        EXPECT_EQ(cmpnt_safe_verify(patch_package, 0, 0, 0), 0);
        cmpnt_sign_verify_init();
    };
    expect({
        {"in the root directory", "/root.deb", [] {}, -1, unlisted("root.deb")},
        {"in the root directory, listed by another patch, and not there", "/root.deb",
         list_root_file, -1, refused_digest("root.deb", 2)},
        {"in the root directory, listed by another patch, and there in the working directory",
         "/root.deb",
         [=] {
             list_root_file();
             write_file("/opt/root.deb", package_text);
         },
         0,
         {}},
        {"in the working directory", fix1, [] { make_patch("/opt"); }, -1,
         Texts{"get_path_exclude_file_name: str is null."} +
             refused_list(patch_package, std::string(fix1) + "/patch-sm3.hash")},
        {"in the working directory, by a path",
         std::string("./") + fix1,
         [] { make_patch("."); },
         0,
         {}},
    });
    ASSERT_EQ(chdir("/"), 0);
}

}  // namespace
