// Whether the library lets a package be installed, and whether it looked at all.
#ifndef CMPNTCTL_VERDICT_HH
#define CMPNTCTL_VERDICT_HH

#include <string>
#include <vector>

#include "file_descriptor.hh"

namespace cmpntctl {

enum class PackageKind { base, patch, unknown };

enum class Verdict { passed, refused, not_checked, unreadable };

const char *word_of(Verdict verdict);

struct Judgement {
    std::string file;  // as it was asked for
    std::string path;  // from the root
    PackageKind kind = PackageKind::unknown;
    Verdict verdict = Verdict::refused;
    bool is_missing = false;
    std::string reason;               // why it was refused or not checked
    std::vector<std::string> errors;  // of the library's trace
};

// From the root; throws a Failure for a path that a shell would misread.
std::string package_path(const std::string &file);

// One package's verification. Lists that were verified before count for nothing in it; its digests
// are there until it ends.
class Verification {
public:
    Verification();  // throws a Failure while another of this program runs: they share a folder
    ~Verification();
    Verification(const Verification &) = delete;
    Verification &operator=(const Verification &) = delete;

    Judgement judge(const std::string &file);

private:
    FileDescriptor lock_;
};

}  // namespace cmpntctl

#endif
