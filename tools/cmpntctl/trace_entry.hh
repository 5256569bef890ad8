// One message of a trace file.
#ifndef CMPNTCTL_TRACE_ENTRY_HH
#define CMPNTCTL_TRACE_ENTRY_HH

#include <string>
#include <string_view>
#include <vector>

#include "command.hh"

namespace cmpntctl {

// All but the message is empty for text that stands before the first message of its file.
struct TraceEntry {
    std::string time;  // "2024-03-01 10:15:02.004211"
    std::string thread;
    std::string kind;  // "error", "trace" ...
    std::string function;
    std::string line;
    std::string message;  // of any number of lines, without the last newline

    bool is_stamped() const { return !time.empty(); }
};

// The messages of "[TIME-MICROSECONDS, KIND, FUNCTION-LINE]message". A message goes on to the next
// such stamp, also one within a line: one that was cut has lost its newline. What stands before the
// first stamp belongs to the entry before.
std::vector<TraceEntry> parse_trace(std::string_view text, const TraceEntry &before);

Json to_json(const TraceEntry &entry);

// The lines of entries for people; on a narrow terminal the date is a line of its own.
class TracePrinter {
public:
    explicit TracePrinter(const Session &session) : session_(session) {}
    std::string text(const TraceEntry &entry);

private:
    std::string time_of(const TraceEntry &entry, std::string &date_line);

    const Session &session_;
    std::string date_;
};

}  // namespace cmpntctl

#endif
