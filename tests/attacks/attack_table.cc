#include "tests/attacks/attack_table.hh"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "platform/reference/reference_platform.h"
#include "tests/support/deadline.hh"

namespace fs = std::filesystem;

namespace {

constexpr char traces[] = "/var/cache/opkg/debug";
constexpr char by_verify[] = "cmpnt_safe_verify: ";
constexpr char by_directory[] = "cmpnt_patch_sm2_verify_and_get_sm3: ";
constexpr char by_walk[] = "cmpnt_global_hash_file_verify: ";
constexpr char by_unzip[] = "cmpnt_unzip_safe_verify_file: ";

bool is_patch(const std::string &path) { return fs::path(path).extension() == ".deb"; }

bool is_said_by_runner(const std::string &function) {
    return function == "cmpnt_popen_cmd" || function == "cmpnt_popen_cmd_run" ||
           function == "cmpnt_system_cmd_run";
}

std::string without_newline(const std::string &text) {
    EXPECT_TRUE(!text.empty() && text.back() == '\n') << text;
    return text.substr(0, text.find_last_not_of('\n') + 1);
}

// The checkout and the build folder may be mounted into the device.
bool is_mounted(const std::string &path) {
    const std::string above = fs::path(path).parent_path();
    struct stat own, parent;
    return lstat(path.c_str(), &own) == 0 && lstat(above.c_str(), &parent) == 0 &&
           own.st_dev != parent.st_dev;
}

Texts errors_traced() {
    Texts errors;
    for (const TraceLine &line : trace_lines()) {
        if (line.kind == "error" && !is_said_by_runner(line.function)) {
            errors.push_back(line.function + ": " + without_newline(line.message));
        }
    }
    return errors;
}

Texts errors_in_system_log() {
    Texts errors;
    for (const SyslogCall &call : platform.syslog) {
        const std::string function = call.text.substr(1, call.text.find(':') - 1);
        if (call.tag == "CMPNT_ERROR" && !is_said_by_runner(function)) {
            const std::string message = call.text.substr(call.text.find(']') + 1);
            errors.push_back(function + ": " + without_newline(message));
        }
    }
    return errors;
}

std::string description_of(const fs::directory_entry &entry) {
    const std::string path = entry.path();
    std::string text = path + '\0' + std::to_string(mode_of(path));
    if (entry.is_symlink()) {
        return text + " link " + fs::read_symlink(entry).string();
    }
    return text + (entry.is_regular_file() ? " file " + read_file(path) : " other");
}

void expect_one(const Attack &attack) {
    SCOPED_TRACE(attack.name);
    reference_platform_set_signer_id(nullptr);
    lay_out_device();
    attack.change();
    forget_log();
    const Snapshot before = look_at_device();
    const int descriptors = open_descriptors();
    {
        const Deadline deadline;
        EXPECT_EQ(cmpnt_safe_verify(attack.path.c_str(), 0, 0, 0), attack.result);
    }
    EXPECT_EQ(errors_said(), attack.errors);
    EXPECT_EQ(changes_between(before, look_at_device()), attack.changed);
    EXPECT_EQ(open_descriptors(), descriptors);
    if (attack.after) {
        attack.after();
    }
}

}  // namespace

void AttackTest::expect(const std::vector<Attack> &attacks) {
    for (const Attack &attack : attacks) {
        struct OwnDevice : AttackTest {
            void TestBody() override {}
            using DeviceTest::SetUp;
        };
        OwnDevice().SetUp();
        expect_one(attack);
    }
    reference_platform_set_signer_id(nullptr);
}

Snapshot look_at_device() {
    Snapshot snapshot;
    for (const char *folder : {"/var", "/data", "/tmp", "/opt"}) {
        fs::recursive_directory_iterator entry(folder), end;
        for (; entry != end; ++entry) {
            if (entry->path() == scratch_folder || entry->path() == traces ||
                is_mounted(entry->path())) {
                entry.disable_recursion_pending();
            } else {
                snapshot.push_back(description_of(*entry));
            }
        }
    }
    std::sort(snapshot.begin(), snapshot.end());
    return snapshot;
}

Texts changes_between(const Snapshot &before, const Snapshot &after) {
    Texts changes;
    std::set_symmetric_difference(before.begin(), before.end(), after.begin(), after.end(),
                                  std::back_inserter(changes));
    for (std::string &change : changes) {
        change = change.c_str();  // up to the description
    }
    changes.erase(std::unique(changes.begin(), changes.end()), changes.end());
    return changes;
}

Texts errors_said() {
    Texts errors = errors_traced();
    EXPECT_EQ(errors_in_system_log(), errors);
    return errors;
}

Texts operator+(Texts first, const Texts &second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Texts refused_directory(const std::string &message) {
    return {by_directory + message,
            std::string(by_verify) + "cmpnt_patch_sm2_verify_and_get_sm3 fail"};
}

Texts refused_list(const std::string &path, const std::string &list) {
    return is_patch(path)
               ? refused_directory("safe_verify_file_signature_with_id(" + list + ") fail")
               : Texts{std::string(by_verify) + "safe_verify_file_signature(" + list + ") fail"};
}

Texts refused_load(const std::string &path, const std::string &message) {
    const Texts load = {"cmpnt_get_hash_info: " + message};
    return load + (is_patch(path) ? refused_directory("cmpnt_get_hash_info fail")
                                  : Texts{std::string(by_verify) + "cmpnt_get_hash_info fail"});
}

Texts unlisted(const std::string &name) {
    return {std::string(by_verify) + "cmpnt_check_patch_hash_value(" + name + ") fail."};
}

Texts refused_digest(const std::string &name, int ret) {
    return Texts{"cmpnt_check_patch_hash_value: do_verify_signature fail ret(" +
                 std::to_string(ret) + ")."} +
           unlisted(name);
}

Texts refused_smu_file(const std::string &name, int ret) {
    return Texts{"cmpnt_check_patch_hash_value: do_verify_signature fail ret(" +
                 std::to_string(ret) + ")."} +
           refused_directory("cmpnt_check_patch_hash_value(" + name + ") fail.");
}

Texts refused_file(const std::string &installed, int levels, int ret) {
    const Texts mismatch = {
        std::string(by_walk) + "(" + installed + ") do_verify_signature fail ret(" +
            std::to_string(ret) + ").",
        std::string(by_walk) + "file(" + installed + ") not in dynamic white list."};
    return mismatch +
           Texts(static_cast<size_t>(levels),
                 std::string(by_walk) + "cmpnt_global_hash_file_verify fail") +
           Texts{std::string(by_verify) + "cmpnt_hash_file_verify fail"};
}

Texts refused_archive(const std::string &archive) {
    return {std::string(by_unzip) + "cmpnt_popen_cmd_run fail, buf(" + archive + " -C " +
                scratch_folder + ").",
            std::string(by_verify) + "cmpnt_unzip_safe_verify_file fail"};
}

Texts refused_inner_archive() {
    return {std::string(by_unzip) + "cmpnt_system_cmd_run fail, buf(" + scratch_folder +
                "/data.tar.gz -C " + scratch_folder + ").",
            std::string(by_verify) + "cmpnt_unzip_safe_verify_file fail"};
}
