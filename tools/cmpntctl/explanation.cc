#include "explanation.hh"

#include <string.h>

#include <filesystem>
#include <unordered_map>

#include "libcmpnt_db.h"
#include "package_tree.hh"
#include "platform/platform.h"
#include "table.hh"

namespace fs = std::filesystem;

namespace cmpntctl {
namespace {

constexpr char key_path[] = "/var/safe-verify/key/korvel_sm2_public.pem";
constexpr char global_list[] = "/var/safe-verify/sm3/global-sm3.hash";
constexpr char global_signature[] = "/var/safe-verify/signature/global-sm2.sign";
constexpr char whitelist[] = "/var/safe-verify/sm3/global-white-sm3.hash";
constexpr char whitelist_signature[] = "/var/safe-verify/signature/global-white-sm2.sign";
constexpr char patch_list[] = "/patch-sm3.hash";
constexpr char patch_signature[] = "/patch-sm2.sign";
constexpr char start_up_links[] = "/etc/rc.d";
constexpr size_t indentation = 2, heading_width = 14;

void add_line(Explanation &explanation, const std::string &heading, const std::string &text) {
    explanation.text += std::string(indentation, ' ') + heading +
                        std::string(heading_width - heading.size(), ' ') + printable(text) + "\n";
}

void add_lines(Explanation &explanation, const std::vector<std::string> &texts) {
    for (const std::string &text : texts) {
        add_line(explanation, "", "  " + text);
    }
}

std::string counted(size_t count, const char *what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// --- lists and signatures --------------------------------------------------------

// What the verified lists told, the first of a name counting.
using Digests = std::unordered_map<std::string, std::string>;

Digests loaded_digests() {
    Digests digests;
    for (cmpnt_list_head *link = hash_verify_list.next; link != &hash_verify_list;
         link = link->next) {
        const hash_verify_list_t *node = CMPNT_HASH_NODE(link);
        digests.emplace(node->name, node->hash_value);
    }
    return digests;
}

std::string state_of_signature(const std::string &list, const std::string &signature) {
    std::error_code error;
    for (const std::string &path : {list, signature, std::string(key_path)}) {
        if (!fs::exists(path, error)) {
            return "missing: " + path;
        }
    }
    return safe_verify_file_signature_with_id(list.c_str(), signature.c_str(), key_path) != 0
               ? "valid"
               : "wrong";
}

void explain_list(Explanation &explanation, const std::string &list, const std::string &signature,
                  const Digests &digests) {
    const std::string state = state_of_signature(list, signature);
    add_line(explanation, "list", list + " (" + counted(digests.size(), "digest") + " loaded)");
    add_line(explanation, "signature", signature + ": " + state);
    add_line(explanation, "key", key_path);
    explanation.data["list"] = list;
    explanation.data["digests"] = digests.size();
    explanation.data["signature"] = signature;
    explanation.data["signature_state"] = state.substr(0, state.find(':'));
    explanation.data["key"] = key_path;
}

bool has_digest(const std::string &path, const std::string &digest) {
    return do_verify_signature("", path.c_str(), digest.c_str(),
                               static_cast<uint32_t>(digest.size())) == 0;
}

// --- base packages ----------------------------------------------------------------

// The order of the questions is the library's.
const char *class_of(const std::string &installed, const PackageFile &file,
                     const Digests &digests) {
    if (!is_in_checked_directory(installed)) {
        return "elsewhere";
    }
    if (file.is_link && installed.compare(0, strlen(start_up_links), start_up_links) != 0) {
        return "links";
    }
    if (file_exist_in_global_whitelist(installed.c_str()) == 1) {
        return "whitelisted";
    }
    const auto digest = digests.find(installed);
    if (digest == digests.end()) {
        return "unlisted";
    }
    if (has_digest(file.unpacked, digest->second)) {
        return "listed";
    }
    return file_exist_in_dynamic_whitelist(installed.c_str(), 0) == 1 ? "dynamically_whitelisted"
                                                                      : "refused";
}

struct FileClass {
    const char *member;
    const char *heading;
    const char *meaning;
};

constexpr FileClass file_classes[] = {
    {"listed", "listed", "with the listed digest"},
    {"refused", "refused", "listed with another digest"},
    {"dynamically_whitelisted", "whitelisted", "with another digest, on the dynamic whitelist"},
    {"whitelisted", "never checked", "on the global whitelist"},
    {"unlisted", "unlisted", "in trusted directories but on no list: pass unchecked"},
    {"links", "links", "pass unchecked, but for those below /etc/rc.d"},
    {"elsewhere", "elsewhere", "outside the trusted directories: nobody looks at them"},
};

void explain_files(Explanation &explanation, const std::string &package, const Digests &digests) {
    const PackageTree tree(package);
    std::map<std::string, std::vector<std::string>> files;
    for (const auto &[installed, file] : tree.files()) {
        files[class_of(installed, file, digests)].push_back(installed);
    }
    Json data = Json::object();
    for (const FileClass &file_class : file_classes) {
        const std::vector<std::string> &members = files[file_class.member];
        data[file_class.member] = members.size();
        if (!members.empty()) {
            add_line(explanation, file_class.heading,
                     counted(members.size(), "file") + " " + file_class.meaning);
        }
        if (strcmp(file_class.member, "refused") == 0) {
            add_lines(explanation, members);
        }
    }
    data["refused_files"] = files["refused"];
    explanation.data["files"] = data;
}

void explain_whitelist(Explanation &explanation) {
    std::error_code error;
    const bool counts = fs::exists(whitelist_signature, error);
    const std::string state = counts ? state_of_signature(whitelist, whitelist_signature)
                                     : "not signed: counts for nothing";
    add_line(explanation, "whitelist", std::string(whitelist) + ": " + state);
    explanation.data["whitelist"] = whitelist;
    explanation.data["whitelist_state"] = counts ? state.substr(0, state.find(':')) : "unsigned";
}

Explanation explain_base_package(const Judgement &judgement) {
    const Digests digests = loaded_digests();
    Explanation explanation;
    add_line(explanation, "kind", "base package, held against the device's signed list of files");
    explanation.data["kind"] = "base";
    explain_list(explanation, global_list, global_signature, digests);
    explain_whitelist(explanation);
    // Without the lists no file was looked at.
    if (!digests.empty() || judgement.verdict == Verdict::passed) {
        try {
            explain_files(explanation, judgement.path, digests);
        } catch (const Failure &failure) {
            add_line(explanation, "files", failure.what());
        }
    } else {
        add_line(explanation, "files", "not looked at: that takes a valid list");
    }
    return explanation;
}

// --- patches ----------------------------------------------------------------------

const char *state_of_patch_file(const std::string &path, const Digests &digests) {
    const auto digest = digests.find(fs::path(path).filename().string());
    if (digest == digests.end()) {
        return "unlisted";
    }
    return has_digest(path, digest->second) ? "listed" : "wrong";
}

std::string meaning_of(const std::string &state) {
    return state == "listed"  ? "has the listed digest"
           : state == "wrong" ? "listed with another digest"
                              : "not on the list: refused";
}

struct PatchFolder {
    std::vector<fs::path> smu_files;
    size_t others = 0;
};

PatchFolder look_into(const fs::path &package) {
    PatchFolder folder;
    std::error_code error;
    for (const fs::directory_entry &entry : fs::directory_iterator(package.parent_path(), error)) {
        const std::string name = entry.path().filename().string();
        const bool is_smu =
            name.compare(0, 3, "smu") == 0 && fs::is_regular_file(entry.symlink_status(error));
        if (is_smu) {
            folder.smu_files.push_back(entry.path());
        } else if (name != package.filename() && "/" + name != patch_list &&
                   "/" + name != patch_signature) {
            folder.others++;
        }
    }
    std::sort(folder.smu_files.begin(), folder.smu_files.end());
    return folder;
}

void explain_patch_files(Explanation &explanation, const std::string &package,
                         const Digests &digests) {
    const std::string state = state_of_patch_file(package, digests);
    add_line(explanation, "package", meaning_of(state));
    explanation.data["package_state"] = state;

    const PatchFolder folder = look_into(package);
    explanation.data["smu_files"] = Json::array();
    for (const fs::path &path : folder.smu_files) {
        const std::string name = path.filename().string();
        const std::string smu_state = state_of_patch_file(path.string(), digests);
        add_line(explanation, "smu file", name + ": " + meaning_of(smu_state));
        explanation.data["smu_files"].push_back({{"file", name}, {"state", smu_state}});
    }
    add_line(explanation, "other files",
             std::to_string(folder.others) + " in its folder: nobody looks at them");
    explanation.data["other_files"] = folder.others;
}

Explanation explain_patch(const Judgement &judgement) {
    const Digests digests = loaded_digests();
    const std::string folder = judgement.path.substr(0, judgement.path.rfind('/'));
    Explanation explanation;
    add_line(explanation, "kind", "patch, held against the signed list of its folder");
    explanation.data["kind"] = "patch";
    explain_list(explanation, folder + patch_list, folder + patch_signature, digests);
    if (digests.empty()) {
        add_line(explanation, "files", "not looked at: that takes a valid list");
    } else {
        explain_patch_files(explanation, judgement.path, digests);
    }
    return explanation;
}

}  // namespace

Explanation explain(const Judgement &judgement) {
    const bool was_checked =
        judgement.verdict == Verdict::passed || judgement.verdict == Verdict::refused;
    Explanation explanation;
    if (was_checked && judgement.kind == PackageKind::base) {
        explanation = explain_base_package(judgement);
    } else if (was_checked && judgement.kind == PackageKind::patch) {
        explanation = explain_patch(judgement);
    }
    if (!judgement.errors.empty()) {
        explanation.text += std::string(indentation, ' ') + "the library's trace says:\n";
    }
    for (const std::string &error : judgement.errors) {
        explanation.text += std::string(2 * indentation, ' ') + printable(error) + "\n";
    }
    return explanation;
}

}  // namespace cmpntctl
