// Whole files: held against each other, and copied so that a power cut leaves the old one or the new.
#ifndef CMPNTCTL_FILES_HH
#define CMPNTCTL_FILES_HH

#include <string>

namespace cmpntctl {

// Whether both can be read and hold the same bytes.
bool files_are_equal(const std::string &a, const std::string &b);

// Throw a Failure when it cannot be done.
void sync_file(const std::string &path);
void sync_directory_of(const std::string &path);

// A new file beside the one that it is to replace. It is removed unless it took that one's place.
class Replacement {
public:
    // Copies source, with the mode and the owner of target, or of source where there is none yet.
    // The file is on the disk afterwards. Throws a Failure.
    Replacement(const std::string &source, const std::string &target);
    Replacement(const Replacement &) = delete;
    Replacement &operator=(const Replacement &) = delete;
    ~Replacement();

    const std::string &path() const { return path_; }
    void take_place();  // throws a Failure, with the target as it was

private:
    std::string target_;
    std::string path_;
};

// A file that is to be gone when something else is done, and back when that failed.
class MovedAside {
public:
    explicit MovedAside(const std::string &path);  // a missing file is fine
    MovedAside(const MovedAside &) = delete;
    MovedAside &operator=(const MovedAside &) = delete;
    ~MovedAside();  // moves it back

    bool is_there() const { return !aside_.empty(); }
    void remove();

private:
    std::string path_;
    std::string aside_;
};

}  // namespace cmpntctl

#endif
