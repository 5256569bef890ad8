// What comes with the signed lists: keys, signers, signatures, and the lists as bytes.
#include <sys/stat.h>
#include <unistd.h>

#include "platform/reference/reference_platform.h"
#include "tests/attacks/attack_table.hh"

namespace {

class SignatureAttacks : public AttackTest {};

// The list that a package is held against.
struct SignedList {
    std::string package, list, signature;
};

struct SignatureAttack {
    const char *name;
    std::function<void(const SignedList &)> change;
};

const SignedList both_lists[] = {{base_package, global_list, global_signature},
                                 {patch_package, patch_list, patch_signature}};

void expect_refused(const std::vector<SignatureAttack> &attacks) {
    struct Table : SignatureAttacks {
        void TestBody() override {}
        using AttackTest::expect;
    };
    for (const SignatureAttack &attack : attacks) {
        for (const SignedList &list : both_lists) {
            const auto nothing_loaded = [] {
                EXPECT_EQ(hash_verify_list.next, &hash_verify_list);
                EXPECT_FALSE(exists(scratch_folder));
            };
            Table::expect({{attack.name,
                            list.package,
                            [&] { attack.change(list); },
                            -1,
                            refused_list(list.package, list.list),
                            {},
                            nothing_loaded}});
        }
    }
}

void put_directory(const std::string &path) {
    remove_tree(path);
    make_directories(path);
}

void put_pipe(const std::string &path) {
    remove_tree(path);
    EXPECT_EQ(mkfifo(path.c_str(), 0600), 0);
}

void put_key(const std::string &pem) { write_file(key_file, pem); }

void edit(const std::string &path, const std::function<void(std::string &)> &change) {
    std::string data = read_file(path);
    change(data);
    write_file(path, data);
}

void flip(const std::string &path, double place) {
    edit(path, [=](std::string &data) {
        char &byte = data[static_cast<size_t>(place * static_cast<double>(data.size() - 1))];
        byte = static_cast<char>(byte ^ 1);
    });
}

TEST_F(SignatureAttacks, WithTheKey) {
    expect_refused({
        {"another vendor's key", [](auto &) { put_key(other_key().public_pem); }},
        {"a key of another curve",
         [](auto &) { put_key(signing::make_key_pair("P-256").public_pem); }},
        {"no key", [](auto &) { remove_tree(key_file); }},
        {"an empty key file", [](auto &) { put_key(""); }},
        {"the private key", [](auto &) { put_key(vendor_key().private_pem); }},
        {"half a key", [](auto &) { put_key(vendor_key().public_pem.substr(0, 90)); }},
        {"text for a key", [](auto &) { put_key("-----BEGIN PUBLIC KEY-----\n"); }},
        {"another key first",
         [](auto &) { put_key(other_key().public_pem + vendor_key().public_pem); }},
        {"a mebibyte of key",
         [](auto &) { put_key(std::string(1 << 20, '\n') + vendor_key().public_pem); }},
        {"a directory for a key", [](auto &) { put_directory(key_file); }},
        {"a pipe for a key", [](auto &) { put_pipe(key_file); }},
    });
}

TEST_F(SignatureAttacks, WithTheSigner) {
    const auto sign_as = [](const SignedList &signed_list, const char *id) {
        write_file(signed_list.signature,
                   signing::sign(read_file(signed_list.list), vendor_key(), id));
    };
    expect_refused({
        {"another identifier", [&](auto &list) { sign_as(list, "1234567812345679"); }},
        {"no identifier", [&](auto &list) { sign_as(list, ""); }},
        {"a device that expects another",
         [](auto &) { reference_platform_set_signer_id("vendor@example.org"); }},
        {"another vendor",
         [](auto &list) {
             write_file(list.signature, signing::sign(read_file(list.list), other_key()));
         }},
        {"another vendor on another curve",
         [](auto &list) {
             const signing::KeyPair key = signing::make_key_pair("P-256");
             put_key(key.public_pem);
             write_file(list.signature, signing::sign(read_file(list.list), key));
         }},
    });
}

TEST_F(SignatureAttacks, WithTheSignature) {
    expect_refused({
        {"none", [](auto &list) { remove_tree(list.signature); }},
        {"an empty one", [](auto &list) { write_file(list.signature, ""); }},
        {"half of it",
         [](auto &list) {
             edit(list.signature, [](auto &data) { data.resize(data.size() / 2); });
         }},
        {"all but a byte",
         [](auto &list) { edit(list.signature, [](auto &data) { data.pop_back(); }); }},
        {"a byte more", [](auto &list) { edit(list.signature, [](auto &data) { data += '\0'; }); }},
        {"a newline more",
         [](auto &list) { edit(list.signature, [](auto &data) { data += '\n'; }); }},
        {"another first byte", [](auto &list) { flip(list.signature, 0); }},
        {"another middle byte", [](auto &list) { flip(list.signature, 0.5); }},
        {"another last byte", [](auto &list) { flip(list.signature, 1); }},
        {"that of another file",
         [](auto &list) { write_file(list.signature, vendor_signature("another file\n")); }},
        {"that of the other list",
         [](auto &list) {
             const bool is_patch = list.signature == patch_signature;
             write_file(list.signature, read_file(both_lists[is_patch ? 0 : 1].signature));
         }},
        {"zeros for both numbers",
         [](auto &list) {
             write_file(list.signature, {0x30, 6, 2, 1, 0, 2, 1, 0});
         }},
        {"hexadecimal digits",
         [](auto &list) { write_file(list.signature, signing::sm3(read_file(list.signature))); }},
        {"a mebibyte",
         [](auto &list) { edit(list.signature, [](auto &data) { data.resize(1 << 20); }); }},
        {"a directory", [](auto &list) { put_directory(list.signature); }},
        {"a pipe", [](auto &list) { put_pipe(list.signature); }},
        {"a link to nowhere",
         [](auto &list) {
             remove_tree(list.signature);
             EXPECT_EQ(symlink("nowhere", list.signature.c_str()), 0);
         }},
    });
}

TEST_F(SignatureAttacks, WithTheListItself) {
    expect_refused({
        {"none", [](auto &list) { remove_tree(list.list); }},
        {"an empty one", [](auto &list) { write_file(list.list, ""); }},
        {"another first byte", [](auto &list) { flip(list.list, 0); }},
        {"another last byte", [](auto &list) { flip(list.list, 1); }},
        {"a line more",
         [](auto &list) { edit(list.list, [](auto &data) { data += list_line("", "/x"); }); }},
        {"a newline less",
         [](auto &list) { edit(list.list, [](auto &data) { data.pop_back(); }); }},
        {"a carriage return more",
         [](auto &list) {
             edit(list.list, [](auto &data) { data.insert(data.size() - 1, "\r"); });
         }},
        {"a directory", [](auto &list) { put_directory(list.list); }},
        {"a pipe", [](auto &list) { put_pipe(list.list); }},
    });
}

// What the same changes of a whitelist come to that has a signature.
TEST_F(SignatureAttacks, WithTheWhitelist) {
    const Texts refused = refused_list(base_package, white_list);
    const auto change = [](const std::function<void()> &what) {
        return [=] {
            write_white_list("/usr/bin/hello\n");
            what();
        };
    };
    expect({
        {"another byte", base_package, change([] { flip(white_list, 0.5); }), -1, refused},
        {"no list", base_package, change([] { remove_tree(white_list); }), -1, refused},
        {"another signature", base_package, change([] { flip(white_signature, 1); }), -1, refused},
        {"an empty signature", base_package, change([] { write_file(white_signature, ""); }), -1,
         refused},
        {"a signature that is a link to nowhere", base_package, change([] {
             remove_tree(white_signature);
             EXPECT_EQ(symlink("nowhere", white_signature), 0);
         }),
         -1, refused},
        {"the hash list's signature", base_package,
         change([] { write_file(white_signature, read_file(global_signature)); }), -1, refused},
        {"the hash list and its signature in its place",
         base_package,
         change([] {
             write_file(white_list, read_file(global_list));
             write_file(white_signature, read_file(global_signature));
         }),
         0,
         {}},
        {"a bad one, where a patch does not ask for it",
         patch_package,
         change([] { flip(white_signature, 1); }),
         0,
         {}},
    });
}

// The good device, and what is signed as well as it.
TEST_F(SignatureAttacks, ThatAreNone) {
    for (const SignedList &list : both_lists) {
        expect({
            {"the good device", list.package, [] {}, 0, {}},
            {"another identifier of both",
             list.package,
             [&] {
                 const char id[] = "vendor@example.org";
                 write_file(list.signature, signing::sign(read_file(list.list), vendor_key(), id));
                 reference_platform_set_signer_id(id);
             },
             0,
             {}},
            {"another signature of the same list",
             list.package,
             [&] { write_file(list.signature, signing::sign(read_file(list.list), vendor_key())); },
             0,
             {}},
            {"text around the key",
             list.package,
             [] { put_key("vendor\n" + vendor_key().public_pem + other_key().public_pem); },
             0,
             {}},
        });
    }
    // A signature does not say what it is for.
    expect({
        {"the patch's list for the global one",
         base_package,
         [] {
             write_file(global_list, read_file(patch_list));
             write_file(global_signature, read_file(patch_signature));
             put_bad_package();
         },
         0,
         {}},
        {"the global list for the patch's", patch_package,
         [] {
             write_file(patch_list, read_file(global_list));
             write_file(patch_signature, read_file(global_signature));
         },
         -1, refused_directory("cmpnt_check_patch_hash_value(smu_hello) fail.")},
    });
}

}  // namespace
