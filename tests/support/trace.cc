#include "tests/support/trace.hh"

#include <string.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <regex>

#include "tests/support/files.hh"
#include "tests/support/platform_recorder.hh"

namespace {

struct ChannelWords {
    const char *tag;
    const char *module;
    const char *kind;
};

constexpr ChannelWords channels[] = {
    {"CMPNT_TRACE", "COMMON", "trace"},  {"CMPNT_ERROR", "COMMON", "error"},
    {"CMPNT_MAJOR", "COMMON", "major"},  {"CLIENT_TRACE", "CLIENT", "trace"},
    {"CLIENT_ERROR", "CLIENT", "error"}, {"SERVER_TRACE", "SERVER", "trace"},
    {"SERVER_ERROR", "SERVER", "error"}, {"BEGIN_TRACE", "BEGIN", "trace"},
    {"BEGIN_ERROR", "BEGIN", "error"},
};

const ChannelWords *find_channel(const std::string &tag) {
    for (const ChannelWords &channel : channels) {
        if (tag == channel.tag) {
            return &channel;
        }
    }
    return nullptr;
}

std::string all_that_was_said() {
    std::string text = "trace file:\n" + read_file(trace_path()) + "\nsystem log:\n";
    for (const SyslogCall &call : platform.syslog) {
        text += call.tag + "/" + call.module + " " + call.text;
    }
    return text;
}

bool in_system_log(const ChannelWords &channel, const std::string &function,
                   const std::string &message) {
    const std::string start = "[" + function + ":";
    for (const SyslogCall &call : platform.syslog) {
        if (call.tag != channel.tag || call.module != channel.module || call.priority != 6 ||
            call.format.compare(0, 7, "[%s:%d]") != 0 || call.format == "[%s:%d]%s" ||
            call.text.compare(0, start.size(), start) != 0) {
            continue;
        }
        const size_t digits = call.text.find_first_not_of("0123456789", start.size());
        if (digits != std::string::npos && call.text.compare(digits, 1, "]") == 0 &&
            call.text.substr(digits + 1) == message) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::string trace_path() {
    char name[128] = {};
    prctl(PR_GET_NAME, name);
    return std::string("/var/cache/opkg/debug/.") + name + ".log";
}

std::vector<TraceLine> trace_lines() {
    static const std::regex header(
        "\\[([0-9]{4,}-[0-9-]{5} [0-9:]{8}-[0-9]{6})?, ([a-z]+), ([A-Za-z0-9_]+)-([0-9]+)\\]");
    const std::string text = read_file(trace_path());
    std::vector<TraceLine> lines;
    size_t end_of_last = 0;
    for (std::sregex_iterator match(text.begin(), text.end(), header), none; match != none;
         ++match) {
        const size_t start = static_cast<size_t>(match->position());
        if (!lines.empty()) {
            lines.back().message = text.substr(end_of_last, start - end_of_last);
        }
        lines.push_back(
            {match->str(1), match->str(2), match->str(3), std::stoi(match->str(4)), std::string()});
        end_of_last = start + static_cast<size_t>(match->length());
    }
    if (!lines.empty()) {
        lines.back().message = text.substr(end_of_last);
    }
    return lines;
}

std::vector<std::string> trace_messages() {
    std::vector<std::string> messages;
    for (const TraceLine &line : trace_lines()) {
        messages.push_back(line.kind + " " + line.function + ": " + line.message);
    }
    return messages;
}

int traced(const std::string &kind, const std::string &function, const std::string &message) {
    int count = 0;
    for (const TraceLine &line : trace_lines()) {
        count += line.kind == kind && line.function == function && line.message == message;
    }
    return count;
}

testing::AssertionResult logged(const std::string &tag, const std::string &function,
                                const std::string &message) {
    const ChannelWords *channel = find_channel(tag);
    if (channel == nullptr) {
        return testing::AssertionFailure() << "no channel has the tag " << tag;
    }
    if (traced(channel->kind, function, message) == 0) {
        return testing::AssertionFailure()
               << "not traced: " << channel->kind << " " << function << ": " << message << "\n"
               << all_that_was_said();
    }
    if (!in_system_log(*channel, function, message)) {
        return testing::AssertionFailure()
               << "not in the system log: " << tag << " " << function << ": " << message << "\n"
               << all_that_was_said();
    }
    return testing::AssertionSuccess();
}

void forget_log() {
    unlink(trace_path().c_str());
    platform.syslog.clear();
}
