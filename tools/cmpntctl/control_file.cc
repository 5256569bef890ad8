#include "control_file.hh"

#include <fcntl.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <iterator>

#include "command.hh"
#include "file_descriptor.hh"
#include "libcmpnt_db.h"
#include "regular_file.hh"

namespace cmpntctl {
namespace {

constexpr uintmax_t largest_control_file = 1 << 20;

// The library opens control files for writing. So it is given a copy, which works for a file that
// nobody may write, too.
class Copy {
public:
    explicit Copy(const std::string &path) {
        std::ifstream source(path, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(source), {}};
        const char *folder = getenv("TMPDIR");
        path_ = std::string(folder != nullptr ? folder : "/tmp") + "/cmpntctl-control.XXXXXX";
        const FileDescriptor copy(mkstemp(path_.data()));
        if (!copy) {
            throw Failure(ExitCode::failed, path_ + " cannot be made: " + strerror(errno),
                          "Set TMPDIR to a folder where you may write.");
        }
        if (write(copy.get(), bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
            unlink(path_.c_str());
            throw Failure(ExitCode::failed, path_ + " cannot be written: " + strerror(errno),
                          "Make room there, or set TMPDIR to another folder.");
        }
    }
    ~Copy() { unlink(path_.c_str()); }
    Copy(const Copy &) = delete;
    Copy &operator=(const Copy &) = delete;
    const char *path() const { return path_.c_str(); }

private:
    std::string path_;
};

// Frees what the library allocated in it.
struct Record : cmpnt_control_info {
    Record() : cmpnt_control_info() {}
    ~Record() {
        cmpnt_free_pointer(serial);
        cmpnt_free_pointer(card_type);
    }
    Record(const Record &) = delete;
    Record &operator=(const Record &) = delete;
};

std::string text_of(const char *text) { return text != nullptr ? text : ""; }

ControlFile take(const Record &record) {
    ControlFile control;
    control.package = record.package;
    control.version = record.version;
    control.architecture = record.architecture;
    control.description = record.description;
    control.md5_sum = record.md5_sum;
    control.serial = text_of(record.serial);
    control.card_type = text_of(record.card_type);
    control.installed_size = record.installed_size;
    control.installed_time = record.installed_time;
    control.is_reboot = record.is_reboot != 0;
    return control;
}

}  // namespace

ControlFile read_control_file(const std::string &path) {
    if (const FileProblem problem = look_at_regular_file(path)) {
        throw Failure(problem.is_missing ? ExitCode::nothing : ExitCode::failed,
                      path + ": " + problem.text, "Give a control file that you may read.");
    }
    struct stat status;
    if (stat(path.c_str(), &status) == 0 &&
        static_cast<uintmax_t>(status.st_size) > largest_control_file) {
        throw Failure(ExitCode::failed, path + " is too large for a control file",
                      "Give the file \"control\" of a package, not the package.");
    }
    const Copy copy(path);
    Record record;
    if (cmpnt_get_pkg_info_from_control(&record, copy.path()) != 0) {
        throw Failure(ExitCode::failed, path + " cannot be understood",
                      "Look for the reason with: cmpntctl log show");
    }
    if (record.package[0] == '\0') {
        throw Failure(ExitCode::nothing, path + " names no package",
                      "A control file has a line \"Package: NAME\".");
    }
    return take(record);
}

}  // namespace cmpntctl
