// A device with a vendor's key and lists on it, all really signed, and good packages to install.
#ifndef CMPNT_TESTS_SIGNED_DEVICE_HH
#define CMPNT_TESTS_SIGNED_DEVICE_HH

#include <string>

#include "tests/support/signing.hh"

constexpr char key_file[] = "/var/safe-verify/key/korvel_sm2_public.pem";
constexpr char global_list[] = "/var/safe-verify/sm3/global-sm3.hash";
constexpr char global_signature[] = "/var/safe-verify/signature/global-sm2.sign";
constexpr char white_list[] = "/var/safe-verify/sm3/global-white-sm3.hash";
constexpr char white_signature[] = "/var/safe-verify/signature/global-white-sm2.sign";
constexpr char dynamic_list[] = "/var/safe-verify/sm3/global-d-white-sm3.hash";
constexpr char switch_file[] = "/var/cache/opkg/.cmpnt_safe_verify_config";
constexpr char scratch_folder[] = "/var/cache/opkg/cmpnt_safe_verify/safe_data_tmp";

constexpr char base_package[] = "/data/hello_1.0.ipk";
constexpr char patch_folder[] = "/data/smu_hello";
constexpr char patch_list[] = "/data/smu_hello/patch-sm3.hash";
constexpr char patch_signature[] = "/data/smu_hello/patch-sm2.sign";
constexpr char patch_file[] = "/data/smu_hello/smu_hello";
constexpr char patch_package[] = "/data/smu_hello/hello_1.0-fix1.deb";
constexpr char second_package[] = "/data/smu_hello/hello_1.0-fix2.deb";

// What the good packages hold.
constexpr char hello_text[] = "echo hello\n";
constexpr char library_text[] = "a library\n";
constexpr char start_text[] = "start hello\n";
constexpr char patch_text[] = "corrects the greeting\n";
constexpr char package_text[] = "a package that corrects the greeting\n";
constexpr char second_text[] = "a package that corrects the farewell\n";

// Made once.
const signing::KeyPair &vendor_key();
const signing::KeyPair &other_key();

// Of what the vendor signed before, the signature is remembered.
std::string vendor_signature(const std::string &data);

// Verification is on, and everything signed: the base package installs "/usr/bin/hello",
// "/lib/libhello.so", "/etc/init.d/hello", its link "/etc/rc.d/rc3.d/S20hello" and the unlisted
// "/usr/bin/unlisted"; the patch has two packages and a "smu" file.
void lay_out_device();

// "DIGEST  NAME", and its newline.
std::string list_line(const std::string &text, const std::string &name);

// Instead of the good base package one whose "/usr/bin/hello" is another.
void put_bad_package();

// The lists of the good device, to add to.
std::string good_global_list();
std::string good_patch_list();

// These replace a list, and sign it anew.
void write_global_list(const std::string &text);
void write_white_list(const std::string &text);
void write_patch_list(const std::string &text, const std::string &folder = patch_folder);

// A base package of what the shell commands make: `inner` in the folder of the files to install, and
// then `outer` beside the inner archive. Either may pack its archive itself, as "../data.tar.gz" and
// "../base.ipk".
void make_package(const std::string &inner, const std::string &outer = "true");

#endif
