// Step 6: packages are verified before they are installed, and refused for any byte that is not the
// vendor's.
#include <stdio.h>
#include <stdlib.h>

#include <fstream>

#include "tools/demo/demo.hh"

namespace demo {
namespace {

constexpr char vendor_key[] = "/opt/vendor/key.pem";
constexpr char foreign_public_key[] = "/opt/vendor/foreign.pem.pub";
constexpr char tree[] = "/opt/vendor/tree";
constexpr char program[] = "/opt/vendor/tree/usr/bin/field-diag";
constexpr char smu_source[] = "/opt/vendor/smu_field_diag.txt";

constexpr char public_key[] = "/var/safe-verify/key/korvel_sm2_public.pem";
constexpr char global_list[] = "/var/safe-verify/sm3/global-sm3.hash";
constexpr char global_signature[] = "/var/safe-verify/signature/global-sm2.sign";

constexpr char base_package[] = "/data/cmpnt/opkg/download/field-diag_1.0.ipk";
constexpr char patch_directory[] = "/data/cmpnt/opkg/download/patch_diag";
constexpr char patch[] = "/data/cmpnt/opkg/download/patch_diag/field-diag_1.0-fix1.deb";
constexpr char smu_file[] = "/data/cmpnt/opkg/download/patch_diag/smu_field_diag.txt";
constexpr char patch_list[] = "/data/cmpnt/opkg/download/patch_diag/patch-sm3.hash";
constexpr char patch_signature[] = "/data/cmpnt/opkg/download/patch_diag/patch-sm2.sign";

constexpr char unpacked_files[] = "/var/cache/opkg/cmpnt_safe_verify/safe_data_tmp";

// The maker lies in the checkout, which the sandbox shows where it is.
bool make(const std::string &arguments) {
    return system(("'" CMPNT_PACKAGE_MAKER "' " + arguments).c_str()) == 0;
}

bool make_base_package() { return make(std::string("package ") + base_package + " " + tree); }

bool make_packages() {
    const std::string keys = std::string(vendor_key) + " ";
    return cmpnt_write_to_file("echo field diagnostics", program) == 0 &&
           cmpnt_write_to_file("corrects the diagnostics", smu_source) == 0 &&
           make("key " + keys) && make("key /opt/vendor/foreign.pem") && make_base_package() &&
           make("global / " + keys + tree) && make(std::string("package ") + patch + " " + tree) &&
           make(std::string("patch ") + patch_directory + " " + keys + smu_source);
}

// --- one byte, or the key -------------------------------------------------------

// Each of these, done twice, changes nothing.
bool change_program(const char *path) { return change_a_byte(path) && make_base_package(); }

bool exchange_keys(const char *path) {
    const char *aside = "/opt/vendor/aside";
    return cmpnt_rename_file_by_popen(path, aside) == 0 &&
           cmpnt_rename_file_by_popen(foreign_public_key, path) == 0 &&
           cmpnt_rename_file_by_popen(aside, foreign_public_key) == 0;
}

struct Attempt {
    const char *package;
    const char *what;
    bool (*change)(const char *path);
    const char *path;
    std::vector<std::string> errors;
};

// What is refused, and what is logged then.
std::vector<Attempt> attempts() {
    const std::string global_list_error =
        "cmpnt_safe_verify: safe_verify_file_signature(" + std::string(global_list) + ") fail";
    const std::vector<std::string> patch_list_errors = {
        "cmpnt_patch_sm2_verify_and_get_sm3: safe_verify_file_signature_with_id(" +
            std::string(patch_list) + ") fail",
        "cmpnt_safe_verify: cmpnt_patch_sm2_verify_and_get_sm3 fail"};
    return {
        {base_package,
         "a file in it",
         change_program,
         program,
         {"cmpnt_global_hash_file_verify: (/usr/bin/field-diag) do_verify_signature fail ret(1).",
          "cmpnt_global_hash_file_verify: file(/usr/bin/field-diag) not in dynamic white list.",
          "cmpnt_safe_verify: cmpnt_hash_file_verify fail"}},
        {base_package, "the global list", change_a_byte, global_list, {global_list_error}},
        {base_package, "its signature", change_a_byte, global_signature, {global_list_error}},
        {base_package, "the key, for another", exchange_keys, public_key, {global_list_error}},
        {patch,
         "the patch itself",
         change_a_byte,
         patch,
         {"cmpnt_check_patch_hash_value: do_verify_signature fail ret(1).",
          "cmpnt_safe_verify: cmpnt_check_patch_hash_value(field-diag_1.0-fix1.deb) fail."}},
        {patch,
         "the smu file beside it",
         change_a_byte,
         smu_file,
         {"cmpnt_check_patch_hash_value: do_verify_signature fail ret(1).",
          "cmpnt_patch_sm2_verify_and_get_sm3: cmpnt_check_patch_hash_value(smu_field_diag.txt) "
          "fail.",
          "cmpnt_safe_verify: cmpnt_patch_sm2_verify_and_get_sm3 fail"}},
        {patch, "the patch's list", change_a_byte, patch_list, patch_list_errors},
        {patch, "its signature", change_a_byte, patch_signature, patch_list_errors},
        {patch, "the key, for another", exchange_keys, public_key, patch_list_errors},
    };
}

// --- what the library says of it -------------------------------------------------

std::streamoff end_of_trace() {
    std::ifstream file(trace_file, std::ios::ate);
    return file.tellg();
}

// "FUNCTION: MESSAGE" of each "[TIME, error, FUNCTION-LINE]MESSAGE" from there on.
std::vector<std::string> errors_since(std::streamoff start) {
    const std::string kind = ", error, ";
    std::vector<std::string> errors;
    std::ifstream file(trace_file);
    file.seekg(start);
    for (std::string line; std::getline(file, line);) {
        const size_t function = line.find(kind);
        const size_t number = line.find('-', function);
        const size_t message = line.find(']', number);
        if (line[0] == '[' && function != std::string::npos && message != std::string::npos) {
            const size_t name = function + kind.size();
            errors.push_back(line.substr(name, number - name) + ": " + line.substr(message + 1));
        }
    }
    return errors;
}

// A run of its own, as a host does it: the lists are verified anew, and nothing is left of the last
// package that was refused.
int32_t verify(const char *package) {
    cmpnt_remove(unpacked_files);
    cmpnt_sign_verify_init();
    const int32_t result = cmpnt_safe_verify(package, 0, 0, 0);
    cmpnt_free_sign_verify();
    return result;
}

bool passes(const char *package) {
    const std::streamoff start = end_of_trace();
    const int32_t result = verify(package);
    printf("  %-48s -> %s\n", last_component(package),
           result == 0 ? "may be installed" : "refused");
    return result == 0 && errors_since(start).empty();
}

bool is_refused(const Attempt &attempt) {
    if (!attempt.change(attempt.path)) {
        return false;
    }
    const std::streamoff start = end_of_trace();
    const int32_t result = verify(attempt.package);
    const std::vector<std::string> errors = errors_since(start);
    printf("  %-24s %-23s -> %s\n", last_component(attempt.package), attempt.what,
           result == -1 ? "refused" : "NOT REFUSED");
    for (const std::string &error : errors) {
        printf("      %s\n", error.c_str());
    }
    return result == -1 && errors == attempt.errors && attempt.change(attempt.path);
}

bool changes_are_refused() {
    printf("changing one byte in turn, and the key:\n");
    for (const Attempt &attempt : attempts()) {
        if (!is_refused(attempt)) {
            return false;
        }
    }
    return true;
}

}  // namespace

bool try_verification() {
    if (!make_packages()) {
        return fail("making packages and signed lists");
    }
    printf("made a key, a base package, a patch and their signed lists with cmpnt-package\n");
    if (cmpnt_enable_safe_verify() != 0 || cmpnt_safe_verify_enable(0, 0, 0, 0) == 0) {
        return fail("switching verification on");
    }
    printf("switched verification on\n");
    if (!passes(base_package) || !passes(patch)) {
        return fail("passing what the vendor made");
    }
    if (!changes_are_refused()) {
        return fail("refusing every change, for the expected reasons");
    }
    printf("with all of it changed back:\n");
    return (passes(base_package) && passes(patch)) || fail("passing what the vendor made");
}

}  // namespace demo
