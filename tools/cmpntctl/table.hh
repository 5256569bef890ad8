// Aligned columns for people.
#ifndef CMPNTCTL_TABLE_HH
#define CMPNTCTL_TABLE_HH

#include <string>
#include <vector>

#include "command.hh"

namespace cmpntctl {

// Text that may come from anywhere, for a terminal: control characters and bytes that are no UTF-8
// become "?".
std::string printable(const std::string &text);

// How many columns a printable text takes.
size_t columns_of(const std::string &text);

class Table {
public:
    explicit Table(std::vector<std::string> headings) : rows_{std::move(headings)} {}

    // As many cells as there are headings.
    void add(std::vector<std::string> cells);
    bool empty() const { return rows_.size() == 1; }

    // The headings and the rows, each line with its newline. On a terminal the widest columns are
    // shrunk until a line fits: of paths the end is kept, of other texts (versions!) both ends.
    std::string text(const Session &session) const;

private:
    std::vector<std::vector<std::string>> rows_;
};

}  // namespace cmpntctl

#endif
