// One verification after another: what the first leaves to the next.
#include "common/working_record.hh"
#include "tests/attacks/attack_table.hh"

namespace {

const char fix1[] = "hello_1.0-fix1.deb";
const char bye_package[] = "/data/smu_bye/bye.deb";

int32_t verify(const std::string &path) { return cmpnt_safe_verify(path.c_str(), 0, 0, 0); }

void start_anew() {
    cmpnt_free_sign_verify();
    cmpnt_sign_verify_init();
}

// A second patch, good by itself, with a file of this name.
void make_second_patch(const std::string &smu_file) {
    write_file("/data/smu_bye/" + smu_file, "corrects the farewell\n");
    write_file(bye_package, second_text);
    write_patch_list(
        list_line("corrects the farewell\n", smu_file) + list_line(second_text, "bye.deb"),
        "/data/smu_bye");
}

// Of one line that is none.
void make_bad_patch() {
    write_file(bye_package, second_text);
    write_patch_list(list_line(second_text, "bye.deb") + "x\n", "/data/smu_bye");
}

// Installs nothing that the list knows.
void make_other_package() { make_package("mkdir -p usr/bin && echo other >usr/bin/other"); }

class OrderAttacks : public AttackTest {};

TEST_F(OrderAttacks, OfTwoPatches) {
    expect({
        {"with files of different names",
         bye_package,
         [] {
             make_second_patch("smu_bye");
             EXPECT_EQ(verify(patch_package), 0);
         },
         0,
         {},
         {},
         [] { EXPECT_STREQ(g_variable.verified_patch_directory, "/data/smu_bye"); }},
        {"with a file of the same name",
         bye_package,
         [] {
             make_second_patch("smu_hello");
             EXPECT_EQ(verify(patch_package), 0);
         },
         -1,
         refused_smu_file("smu_hello"),
         {},
         [] {
             EXPECT_STREQ(g_variable.verified_patch_directory, patch_folder);
             cmpnt_sign_verify_init();
             EXPECT_EQ(verify(bye_package), -1);
             start_anew();
             EXPECT_EQ(verify(bye_package), 0);
         }},
        {"with a package of the same name", std::string("/data/smu_bye/") + fix1,
         [] {
             write_file(std::string("/data/smu_bye/") + fix1, second_text);
             write_patch_list(list_line(second_text, fix1), "/data/smu_bye");
             EXPECT_EQ(verify(patch_package), 0);
         },
         -1, refused_digest(fix1)},
        {"of which the second vouches for the first's",
         std::string("/data/smu_bye/") + fix1,
         [] {
             make_second_patch("smu_bye");
             write_file(std::string("/data/smu_bye/") + fix1, package_text);
             EXPECT_EQ(verify(patch_package), 0);
         },
         0,
         {}},
    });
}

TEST_F(OrderAttacks, OfTwoPackagesOfOnePatch) {
    expect({
        {"whose list was taken away",
         second_package,
         [] {
             EXPECT_EQ(verify(patch_package), 0);
             remove_tree(patch_list);
             remove_tree(patch_signature);
             remove_tree(key_file);
         },
         0,
         {}},
        {"whose smu file was changed",
         second_package,
         [] {
             EXPECT_EQ(verify(patch_package), 0);
             write_file(patch_file, "another");
         },
         0,
         {}},
        {"whose smu file was changed, and the state cleared", second_package,
         [] {
             EXPECT_EQ(verify(patch_package), 0);
             write_file(patch_file, "another");
             cmpnt_sign_verify_init();
         },
         -1, refused_smu_file("smu_hello")},
        {"of which the second was changed", second_package,
         [] {
             EXPECT_EQ(verify(patch_package), 0);
             write_file(second_package, "another");
         },
         -1, refused_digest("hello_1.0-fix2.deb")},
        {"after the digests were freed", second_package,
         [] {
             EXPECT_EQ(verify(patch_package), 0);
             cmpnt_free_sign_verify();
         },
         -1, unlisted("hello_1.0-fix2.deb")},
        {"after a failure",
         patch_package,
         [] {
             write_file(patch_package, "another");
             EXPECT_EQ(verify(patch_package), -1);
             write_file(patch_package, package_text);
         },
         0,
         {}},
    });
}

TEST_F(OrderAttacks, AfterAListThatCouldNotBeLoaded) {
    const auto fail = [] {
        make_bad_patch();
        EXPECT_EQ(verify(bye_package), -1);
        EXPECT_EQ(hash_verify_list.next, &hash_verify_list);
    };
    expect({
        {"the patch verified before it",
         patch_package,
         [=] {
             EXPECT_EQ(verify(patch_package), 0);
             fail();
         },
         -1,
         unlisted(fix1),
         {},
         [] {
             EXPECT_EQ(verify(second_package), -1);
             cmpnt_sign_verify_init();
             EXPECT_EQ(verify(patch_package), 0);
         }},
        {"a patch that was not verified", patch_package, fail, 0, {}},
        {"a bad base package, with the list loaded before it",
         base_package,
         [=] {
             EXPECT_EQ(verify(base_package), 0);
             fail();
             put_bad_package();
         },
         0,
         {},
         {},
         [] {
             cmpnt_sign_verify_init();
             EXPECT_EQ(verify(base_package), -1);
         }},
        {"a bad base package, with the list not yet loaded", base_package,
         [=] {
             fail();
             put_bad_package();
         },
         -1, refused_file("/usr/bin/hello", 0)},
        {"a bad base package, after the digests were freed",
         base_package,
         [] {
             EXPECT_EQ(verify(base_package), 0);
             put_bad_package();
             cmpnt_free_sign_verify();
         },
         0,
         {},
         {},
         [] { EXPECT_EQ(g_variable.global_hashes_loaded, 1u); }},
    });
}

TEST_F(OrderAttacks, OfBasePackages) {
    const auto fail = [] {
        const std::string good = read_file(base_package);
        put_bad_package();
        EXPECT_EQ(verify(base_package), -1);
        EXPECT_TRUE(exists(scratch_folder));
        write_file(base_package, good);
    };
    expect({
        {"of which the second overwrites what the bad one left",
         base_package,
         fail,
         0,
         {},
         {},
         [] { EXPECT_FALSE(exists(scratch_folder)); }},
        {"of which the second finds what the bad one left",
         base_package,
         [=] {
             fail();
             make_other_package();
         },
         -1,
         refused_file("/usr/bin/hello", 0),
         {},
         [] {
             EXPECT_EQ(verify(base_package), -1);
             remove_tree(scratch_folder);
             EXPECT_EQ(verify(base_package), 0);
         }},
        {"of which the second has no inner archive, and finds the bad one's", base_package,
         [=] {
             fail();
             make_package("true", "rm data.tar.gz; echo 2.0 >debian-binary");
         },
         -1, refused_file("/usr/bin/hello", 0)},
        {"whose list was changed after it was loaded",
         base_package,
         [] {
             EXPECT_EQ(verify(base_package), 0);
             write_file(global_list, "x\n");
             remove_tree(key_file);
         },
         0,
         {}},
        {"after a list that did not hold",
         base_package,
         [] {
             write_file(global_signature, "");
             EXPECT_EQ(verify(base_package), -1);
             write_global_list(good_global_list());
         },
         0,
         {}},
        {"whose file a patch listed first", base_package,
         [] {
             write_patch_list(good_patch_list() + list_line("sings\n", "/usr/bin/hello"));
             EXPECT_EQ(verify(patch_package), 0);
         },
         -1, refused_file("/usr/bin/hello", 0)},
    });
}

// What is looked at of a path before anything else.
TEST_F(OrderAttacks, OfPathsThatArePackagesOfNoKind) {
    const auto no_suffix = [](const std::string &path, const std::string &why) {
        return Texts{"get_file_type: " + why,
                     "cmpnt_safe_verify: get_file_type fail, file_name(" + path + ")."};
    };
    const auto spoil = [] {
        for (const char *file : {key_file, global_list, patch_list, base_package, patch_package}) {
            remove_tree(file);
        }
    };
    const std::string long_suffix = "." + std::string(260, 's');
    expect({
        {"upper case", "/data/hello_1.0.IPK", spoil, 0, {}},
        {"upper case, of a patch", "/data/hello_1.0.DEB", spoil, 0, {}},
        {"an image", "/data/hello_1.0.bin", spoil, 0, {}},
        {"compressed", "/data/hello_1.0.ipk.gz", spoil, 0, {}},
        {"a blank behind it", "/data/hello_1.0.ipk ", spoil, 0, {}},
        {"a newline behind it", "/data/hello_1.0.ipk\n", spoil, 0, {}},
        {"a slash behind it", "/data/hello_1.0.ipk/", spoil, 0, {}},
        {"a dot in the directory only", "/data/hello.d/file", spoil, 0, {}},
        {"a directory that is one", "/data/hello.ipk/file", spoil, 0, {}},
        {"no suffix", "/data/hello", spoil, -1,
         no_suffix("/data/hello", "The file_name(/data/hello) type is invalid.")},
        {"no text", "", spoil, -1, no_suffix("", "The file_name() type is invalid.")},
        {"only a dot", "/data/hello.", spoil, -1,
         no_suffix("/data/hello.", "the type(.) is NULL, please input correct filename type")},
        {"only a suffix", "/data/.ipk", spoil, -1, refused_list(base_package, global_list)},
        {"only a suffix, of a patch", "/data/.deb", spoil, -1,
         refused_list(patch_package, "/data/patch-sm3.hash")},
        {"only a suffix, listed",
         std::string(patch_folder) + "/.deb",
         [] {
             write_file(std::string(patch_folder) + "/.deb", package_text);
             write_patch_list(good_patch_list() + list_line(package_text, ".deb"));
         },
         0,
         {}},
    });
    EXPECT_EQ(cmpnt_safe_verify(nullptr, 0, 0, 0), -1);
    EXPECT_EQ(errors_said(), Texts{"cmpnt_safe_verify: param is null."});
}

TEST_F(OrderAttacks, WhileVerificationIsOff) {
    const auto spoil = [] {
        for (const char *file : {switch_file, key_file, global_list, patch_list}) {
            remove_tree(file);
        }
    };
    expect({
        {"a base package", base_package, spoil, 0, {}},
        {"a patch", patch_package, spoil, 0, {}},
        {"no package", "/data/nowhere.ipk", spoil, 0, {}},
        {"no suffix", "/data/nowhere", spoil, 0, {}},
        {"no text", "", spoil, 0, {}},
    });
    EXPECT_EQ(cmpnt_safe_verify(nullptr, 0, 0, 0), -1);
}

}  // namespace
