// Columns that are as wide as their widest cell, or as the terminal allows.
#include "table.hh"

#include <algorithm>

#include "utf8.hh"

namespace cmpntctl {
namespace {

constexpr size_t gap = 2;
constexpr size_t narrowest = 8;  // no column is shrunk below it
constexpr char cut_mark[] = "..";
constexpr size_t cut_mark_size = sizeof(cut_mark) - 1;

bool is_continuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

// The position behind so many characters.
size_t position_of(const std::string &text, size_t characters) {
    size_t position = 0;
    while (position < text.size() && characters > 0) {
        position++;
        while (position < text.size() && is_continuation(text[position])) {
            position++;
        }
        characters--;
    }
    return position;
}

std::string fitted(const std::string &text, size_t width) {
    const size_t columns = columns_of(text);
    if (columns <= width) {
        return text + std::string(width - columns, ' ');
    }
    const size_t kept = width - cut_mark_size;
    if (text[0] == '/') {
        return cut_mark + text.substr(position_of(text, columns - kept));
    }
    const size_t in_front = (kept + 1) / 2;
    return text.substr(0, position_of(text, in_front)) + cut_mark +
           text.substr(position_of(text, columns - (kept - in_front)));
}

size_t total(const std::vector<size_t> &widths) {
    size_t sum = gap * (widths.size() - 1);
    for (const size_t width : widths) {
        sum += width;
    }
    return sum;
}

void shrink(std::vector<size_t> &widths, size_t available) {
    while (total(widths) > available) {
        size_t &widest = *std::max_element(widths.begin(), widths.end());
        if (widest <= narrowest) {
            return;
        }
        widest--;
    }
}

void append_row(std::string &text, const std::vector<std::string> &cells,
                const std::vector<size_t> &widths) {
    for (size_t i = 0; i < cells.size(); i++) {
        text += fitted(cells[i], widths[i]);
        text.append(gap, ' ');
    }
    text.erase(text.find_last_not_of(' ') + 1);
    text += '\n';
}

}  // namespace

std::string printable(const std::string &text) {
    const unsigned char *bytes = reinterpret_cast<const unsigned char *>(text.data());
    std::string clean;
    for (size_t i = 0; i < text.size();) {
        const size_t length = utf8_length(bytes + i, text.size() - i);
        // C1 controls are two bytes long: C2 80 to C2 9F.
        const bool is_control = bytes[i] < 0x20 || bytes[i] == 0x7F ||
                                (bytes[i] == 0xC2 && length == 2 && bytes[i + 1] < 0xA0);
        if (length == 0 || is_control) {
            clean += '?';
            i += length != 0 ? length : utf8_broken_length(bytes + i, text.size() - i);
        } else {
            clean.append(text, i, length);
            i += length;
        }
    }
    return clean;
}

size_t columns_of(const std::string &text) {
    return static_cast<size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return !is_continuation(byte); }));
}

void Table::add(std::vector<std::string> cells) {
    for (std::string &cell : cells) {
        cell = printable(cell);
    }
    rows_.push_back(std::move(cells));
}

std::string Table::text(const Session &session) const {
    std::vector<size_t> widths(rows_[0].size(), 0);
    for (const std::vector<std::string> &row : rows_) {
        for (size_t i = 0; i < row.size(); i++) {
            widths[i] = std::max(widths[i], columns_of(row[i]));
        }
    }
    if (session.is_terminal) {
        shrink(widths, static_cast<size_t>(session.width));
    }
    std::string text;
    for (const std::vector<std::string> &row : rows_) {
        append_row(text, row, widths);
    }
    return text;
}

}  // namespace cmpntctl
