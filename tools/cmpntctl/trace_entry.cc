#include "trace_entry.hh"

#include <ctype.h>
#include <stdlib.h>

#include <algorithm>

#include "table.hh"

namespace cmpntctl {
namespace {

constexpr std::string_view time_form = "[dddd-dd-dd dd:dd:dd-dddddd, ";
constexpr size_t time_length = 26;
constexpr size_t second_end = 19;  // within the time: where the microseconds begin
constexpr int wide_terminal = 120;

bool has_form(std::string_view text, std::string_view form) {
    if (text.size() < form.size()) {
        return false;
    }
    for (size_t i = 0; i < form.size(); i++) {
        const bool fits =
            form[i] == 'd' ? isdigit(static_cast<unsigned char>(text[i])) != 0 : text[i] == form[i];
        if (!fits) {
            return false;
        }
    }
    return true;
}

bool is_number(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// Reads the stamp that text begins with, and returns its length; 0: there is none.
size_t parse_stamp(std::string_view text, TraceEntry &entry) {
    if (!has_form(text, time_form)) {
        return 0;
    }
    const size_t end = text.find_first_of("]\n");
    if (end == std::string_view::npos || text[end] != ']') {
        return 0;
    }
    const std::string_view rest = text.substr(time_form.size(), end - time_form.size());
    const size_t comma = rest.find(", ");
    const size_t dash = rest.rfind('-');
    if (comma == std::string_view::npos || dash == std::string_view::npos || dash < comma ||
        !is_number(rest.substr(dash + 1))) {
        return 0;
    }
    entry.time = text.substr(1, time_length);
    entry.time[second_end] = '.';
    entry.kind = rest.substr(0, comma);
    entry.function = rest.substr(comma + 2, dash - comma - 2);
    entry.line = rest.substr(dash + 1);
    return end + 1;
}

struct Stamp {
    size_t start;
    size_t length;  // 0: there is none, and start is the end of the text
    TraceEntry entry;
};

Stamp next_stamp(std::string_view text, const std::string &thread) {
    TraceEntry entry;
    entry.thread = thread;
    for (size_t start = text.find('['); start != std::string_view::npos;
         start = text.find('[', start + 1)) {
        const size_t length = parse_stamp(text.substr(start), entry);
        if (length > 0) {
            return {start, length, entry};
        }
    }
    return {text.size(), 0, entry};
}

std::string without_newline(std::string_view message) {
    if (!message.empty() && message.back() == '\n') {
        message.remove_suffix(1);
    }
    return std::string(message);
}

const char *color_of(const std::string &kind) {
    if (kind == "error") {
        return "\033[31m";
    }
    if (kind == "major") {
        return "\033[33m";
    }
    return kind == "trace" ? "\033[2m" : "\033[36m";
}

std::string padded(std::string text, size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

// Later lines are set in, so that none can be taken for a message of its own.
std::string message_lines(const std::string &message) {
    std::string lines;
    size_t start = 0;
    for (size_t end; (end = message.find('\n', start)) != std::string::npos; start = end + 1) {
        lines += printable(message.substr(start, end - start)) + "\n    ";
    }
    return lines + printable(message.substr(start)) + "\n";
}

}  // namespace

std::vector<TraceEntry> parse_trace(std::string_view text, const TraceEntry &before) {
    std::vector<TraceEntry> entries;
    const auto add = [&entries](TraceEntry entry, std::string_view message) {
        entry.message = without_newline(message);
        entries.push_back(std::move(entry));
    };
    Stamp stamp = next_stamp(text, before.thread);
    if (stamp.start > 0) {
        add(before, text.substr(0, stamp.start));
    }
    while (stamp.length > 0) {
        text.remove_prefix(stamp.start + stamp.length);
        const Stamp next = next_stamp(text, before.thread);
        add(stamp.entry, text.substr(0, next.start));
        stamp = next;
    }
    return entries;
}

Json to_json(const TraceEntry &entry) {
    const auto or_null = [](const std::string &text) { return text.empty() ? Json() : Json(text); };
    return {{"time", or_null(entry.time)},
            {"thread", entry.thread},
            {"kind", or_null(entry.kind)},
            {"function", or_null(entry.function)},
            {"line", entry.line.empty() ? Json() : Json(atoll(entry.line.c_str()))},
            {"message", entry.message}};
}

std::string TracePrinter::time_of(const TraceEntry &entry, std::string &date_line) {
    if (!entry.is_stamped() || !session_.is_terminal || session_.width >= wide_terminal) {
        return padded(entry.time, time_length);
    }
    const std::string date = entry.time.substr(0, 10);
    if (date != date_) {
        date_line = "--- " + date + " ---\n";
        date_ = date;
    }
    return entry.time.substr(11);
}

std::string TracePrinter::text(const TraceEntry &entry) {
    std::string date_line;
    const std::string time = time_of(entry, date_line);
    std::string kind = padded(printable(entry.kind), 5);
    if (session_.color) {
        kind = color_of(entry.kind) + kind + "\033[0m";
    }
    const std::string place =
        entry.is_stamped() ? " " + printable(entry.function) + ":" + entry.line : "";
    return date_line + time + " " + kind + " " + printable(entry.thread) + place + " " +
           message_lines(entry.message);
}

}  // namespace cmpntctl
