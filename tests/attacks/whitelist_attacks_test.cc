// Both whitelists, as a bad base package meets them.
#include <sys/stat.h>
#include <unistd.h>

#include "platform/reference/reference_platform.h"
#include "tests/attacks/attack_table.hh"
#include "verify/global_whitelist.hh"

namespace {

const char hello[] = "/usr/bin/hello";
constexpr size_t mebibyte = 1 << 20;

const Texts refused = refused_file(hello, 0);
const Texts tolerated = {refused[0]};  // the mismatch is told all the same

std::string no_entry() { return "file_exist_in_dynamic_whitelist: dynamic whitelist format err."; }

// With so many lines that are none: each is told of.
Texts refused_after(size_t bad_lines) {
    return Texts{refused[0]} + Texts(bad_lines, no_entry()) + Texts{refused[1], refused[2]};
}

// A walk asks what it holds of the lists in memory; asked by themselves, they read their files.
class WhitelistAttacks : public AttackTest {
protected:
    static Attack global(const char *name, const std::string &list, int32_t result) {
        const auto change = [=] {
            put_bad_package();
            write_white_list(list);
        };
        const auto by_itself = [=] {
            EXPECT_EQ(file_exist_in_global_whitelist(hello), result == 0 ? 1 : 0);
        };
        return {name, base_package, change, result, result == 0 ? Texts{} : refused, {}, by_itself};
    }

    static Attack dynamic(const char *name, const std::string &list, const Texts &errors) {
        const auto change = [=] {
            put_bad_package();
            write_file(dynamic_list, list);
        };
        const int32_t result = errors.back() == refused.back() ? -1 : 0;
        const auto by_itself = [=] {
            EXPECT_EQ(file_exist_in_dynamic_whitelist(hello, 0), result == 0 ? 1 : 0);
        };
        return {name, base_package, change, result, errors, {}, by_itself};
    }
};

TEST_F(WhitelistAttacks, WithTheSignedList) {
    const std::string zero(1, '\0');
    expect({
        global("the path", "/usr/bin/hello\n", 0),
        global("a path that begins with it", "/usr/bin/hello-world\n", 0),
        global("a path in it", "/usr/bin/hello/world\n", 0),
        global("a directory above it", "/usr/bin/\n", -1),
        global("a beginning of it", "/usr/bin/hell\n", -1),
        global("upper case", "/USR/BIN/HELLO\n", -1),
        global("a blank first", " /usr/bin/hello\n", -1),
        global("its digest first", list_line("sing\n", hello), -1),
        global("text behind it", "/usr/bin/hello  anything\n", 0),
        global("a carriage return", "/usr/bin/hello\r\n", 0),
        global("no newline", "/usr/bin/hello", -1),
        global("no newline, and a letter more", "/usr/bin/hellox", 0),
        global("the last of many", std::string(5000, '\n') + "/usr/bin/hello\n", 0),
        global("nothing", "", -1),
        global("a star", "/usr/bin/*\n", -1),
        global("a zero byte before it", zero + "/usr/bin/hello\n", -1),
        global("a zero byte in it", "/usr/bin" + zero + "/hello\n", -1),
        global("a zero byte behind it", "/usr/bin/hello" + zero + "\n", -1),
        global("a mebibyte behind it", hello + std::string(mebibyte, 'x') + "\n", 0),
        global("a mebibyte before it", std::string(mebibyte, 'x') + hello + "\n", -1),
        global("a line's worth before it", std::string(1023, 'x') + hello + "\n", 0),
    });
}

TEST_F(WhitelistAttacks, WithTheSignatureOfTheList) {
    const auto verified = [](const std::function<void()> &then) {
        return [=] {
            write_white_list("/usr/bin/other\n");
            EXPECT_EQ(cmpnt_safe_verify(base_package, 0, 0, 0), 0);
            put_bad_package();
            then();
        };
    };
    expect({
        {"none", base_package,
         [] {
             put_bad_package();
             write_white_list("/usr/bin/hello\n");
             remove_tree(white_signature);
         },
         -1, refused},
        {"none, nor a list", base_package, [] { put_bad_package(); }, -1, refused},
        {"a list that was changed after it was checked",
         base_package,
         verified([] { write_file(white_list, "/usr/bin/hello\n"); }),
         0,
         {}},
        {"a list that was taken away after it was checked", base_package,
         verified([] { remove_tree(white_list); }), -1,
         // once for each file of the trusted directories
         Texts{"file_exist_in_global_whitelist: open(" + std::string(white_list) +
               ") failed, reason: No such file or directory"} +
             refused},
        {"a signature that came after the check",
         base_package,
         [] {
             EXPECT_EQ(cmpnt_safe_verify(base_package, 0, 0, 0), 0);
             put_bad_package();
             write_file(white_list, "/usr/bin/hello\n");
             write_file(white_signature, "");
         },
         0,
         {}},
    });
}

TEST_F(WhitelistAttacks, WithTheServicesList) {
    const std::string zero(1, '\0');
    const std::string own = "/usr/bin/hello,cmpnt_upgrade_c\n";
    std::string many_fields = "/usr/bin/hello";
    many_fields += std::string(1022 - many_fields.size(), ',') + "\n";
    expect({
        dynamic("our entry", own, tolerated),
        dynamic("another client's", "/usr/bin/hello,another\n", tolerated),
        dynamic("nobody's", "/usr/bin/hello,\n", tolerated),
        dynamic("a longer path", "/usr/bin/hello-world,another\n", refused),
        dynamic("upper case", "/usr/bin/HELLO,another\n", refused),
        dynamic("blanks around it", " \t/usr/bin/hello , another \n", tolerated),
        dynamic("a carriage return", "/usr/bin/hello,another\r\n", tolerated),
        dynamic("more fields", "/usr/bin/hello,another,1,2,3\n", tolerated),
        dynamic("a thousand fields", many_fields, tolerated),
        dynamic("no comma", "/usr/bin/hello\n", refused_after(1)),
        dynamic("another separator", "/usr/bin/hello;another\n", refused_after(1)),
        dynamic("a comma first", ",/usr/bin/hello\n", refused),
        dynamic("bad lines before it", "x\ny z\n\n\n" + own, tolerated + Texts(2, no_entry())),
        dynamic("bad lines behind it", own + "x\n", tolerated),
        dynamic("no newline", "/usr/bin/hello,a", tolerated),
        dynamic("no newline, and no client", "/usr/bin/hello,", refused_after(1)),
        dynamic("a zero byte before it", zero + own, refused),
        dynamic("a zero byte in it", "/usr/bin/hello" + zero + ",another\n", refused_after(1)),
        dynamic("a mebibyte of commas", std::string(mebibyte, ',') + "\n" + own, tolerated),
        dynamic("a mebibyte behind it", "/usr/bin/hello,another" + std::string(mebibyte, 'x'),
                tolerated),
        dynamic("a line's worth before it", std::string(1023, ',') + own, tolerated),
        dynamic("nothing", "", refused),
    });
}

TEST_F(WhitelistAttacks, WithTheServicesFile) {
    const auto put = [](const std::function<void()> &change) {
        return [=] {
            put_bad_package();
            change();
        };
    };
    expect({
        {"a pipe", base_package, put([] { EXPECT_EQ(mkfifo(dynamic_list, 0600), 0); }), -1,
         refused},
        {"a directory", base_package, put([] { make_directories(dynamic_list); }), -1, refused},
        {"a link to nowhere", base_package,
         put([] { EXPECT_EQ(symlink("nowhere", dynamic_list), 0); }), -1,
         Texts{refused[0], "file_exist_in_dynamic_whitelist: open(" + std::string(dynamic_list) +
                               ") failed, reason: No such file or directory"} +
             Texts{refused[1], refused[2]}},
        {"written by the service", base_package,
         put([] { EXPECT_EQ(safe_verify_whitelist_update(hello, "another", 2), 0); }), 0,
         tolerated},
        {"written by the service, and deleted", base_package, put([] {
             EXPECT_EQ(safe_verify_whitelist_update(hello, "another", 2), 0);
             EXPECT_EQ(safe_verify_whitelist_update(hello, "another", 3), 0);
         }),
         -1, refused},
        {"of the good package, which is not asked",
         base_package,
         [] { write_file(dynamic_list, "no entry\n"); },
         0,
         {}},
        {"of a patch, which has none", patch_package,
         [] {
             write_file(patch_file, "another");
             write_file(dynamic_list, "smu_hello,another\n/data/smu_hello/smu_hello,another\n");
         },
         -1, refused_smu_file("smu_hello")},
    });
}

}  // namespace
