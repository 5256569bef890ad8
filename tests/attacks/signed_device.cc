#include "tests/attacks/signed_device.hh"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <map>

#include "tests/support/files.hh"

namespace {

void write_signed(const std::string &list, const std::string &signature, const std::string &text) {
    write_file(list, text);
    write_file(signature, vendor_signature(text));
}

std::string make_good_package() {
    make_package(
        "mkdir -p usr/bin lib etc/init.d etc/rc.d/rc3.d && echo 'echo hello' >usr/bin/hello && "
        "echo 'a library' >lib/libhello.so && echo 'start hello' >etc/init.d/hello && "
        "ln -s ../../init.d/hello etc/rc.d/rc3.d/S20hello && echo unlisted >usr/bin/unlisted",
        "echo 2.0 >debian-binary && echo control >control.tar.gz");
    return read_file(base_package);
}

std::string make_bad_package() {
    make_package("mkdir -p usr/bin && echo sing >usr/bin/hello");
    return read_file(base_package);
}

}  // namespace

const signing::KeyPair &vendor_key() {
    static const signing::KeyPair key = signing::make_key_pair();
    return key;
}

const signing::KeyPair &other_key() {
    static const signing::KeyPair key = signing::make_key_pair();
    return key;
}

std::string vendor_signature(const std::string &data) {
    static std::map<std::string, std::string> signatures;
    std::string &signature = signatures[data];
    if (signature.empty()) {
        signature = signing::sign(data, vendor_key());
    }
    return signature;
}

void lay_out_device() {
    static const std::string good_package = make_good_package();
    write_file(switch_file, "");
    make_directories("/var/cache/opkg/cmpnt_safe_verify");
    write_file(key_file, vendor_key().public_pem);
    write_global_list(good_global_list());
    write_file(base_package, good_package);
    write_file(patch_package, package_text);
    write_file(second_package, second_text);
    write_file(patch_file, patch_text);
    write_patch_list(good_patch_list());
    write_file("/opt/canary/bin/hello", "sings\n");
}

void put_bad_package() {
    static const std::string bad_package = make_bad_package();
    write_file(base_package, bad_package);
}

std::string list_line(const std::string &text, const std::string &name) {
    return signing::sm3(text) + "  " + name + "\n";
}

std::string good_global_list() {
    static const std::string list = list_line(hello_text, "/usr/bin/hello") +
                                    list_line(library_text, "/lib/libhello.so") +
                                    list_line(start_text, "/etc/init.d/hello") +
                                    list_line(start_text, "/etc/rc.d/rc3.d/S20hello");
    return list;
}

std::string good_patch_list() {
    static const std::string list = list_line(patch_text, "smu_hello") +
                                    list_line(package_text, "hello_1.0-fix1.deb") +
                                    list_line(second_text, "hello_1.0-fix2.deb");
    return list;
}

void write_global_list(const std::string &text) {
    write_signed(global_list, global_signature, text);
}

void write_white_list(const std::string &text) { write_signed(white_list, white_signature, text); }

void write_patch_list(const std::string &text, const std::string &folder) {
    write_signed(folder + "/patch-sm3.hash", folder + "/patch-sm2.sign", text);
}

void make_package(const std::string &inner, const std::string &outer) {
    const std::string commands =
        "set -e; rm -rf /opt/make; mkdir -p /opt/make/in /opt/make/out /data; cd /opt/make/in; " +
        inner +
        "; test -e ../data.tar.gz || tar -czf ../data.tar.gz .; mv ../data.tar.gz ../out; "
        "cd ../out; " +
        outer + "; test -e ../base.ipk || tar -czf ../base.ipk .; mv ../base.ipk " + base_package +
        "; cd /; rm -rf /opt/make";
    EXPECT_EQ(system(commands.c_str()), 0) << commands;
}
