// The trace files of the device, read as one stream.
#ifndef CMPNTCTL_TRACE_FILES_HH
#define CMPNTCTL_TRACE_FILES_HH

#include <sys/types.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "file_descriptor.hh"
#include "trace_entry.hh"

namespace cmpntctl {

inline constexpr char trace_directory[] = "/var/cache/opkg/debug";

// Names of the trace files: ".THREAD.log" and ".THREAD.log_bak".
std::vector<std::string> trace_file_names();

class TraceFiles {
public:
    // Only of the thread, when one is named, and of the kind.
    TraceFiles(std::string thread, std::string kind)
        : thread_(std::move(thread)), kind_(std::move(kind)) {}

    // What came since the last call, at first everything, in the order of time. A file is known by
    // its number and kept open, so that what a rotation renames or replaces is read to its end.
    std::vector<TraceEntry> read_new();

private:
    struct File {
        FileDescriptor descriptor;
        off_t offset = 0;
        TraceEntry last;
    };

    bool is_wanted(const std::string &thread) const;
    void open_new();
    void read(File &file, std::vector<TraceEntry> &entries);

    std::string thread_;
    std::string kind_;
    std::map<std::pair<dev_t, ino_t>, File> files_;
};

}  // namespace cmpntctl

#endif
