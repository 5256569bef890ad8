// A row for a callback, without SQLite.
#ifndef CMPNT_TESTS_FAKE_ROW_HH
#define CMPNT_TESTS_FAKE_ROW_HH

#include <list>
#include <string>
#include <utility>
#include <vector>

#include "db/row.hh"

class FakeRow {
public:
    // {{"patch_name", "SMU-1"}, {"cur_flag", nullptr}}: columns and their values.
    FakeRow(std::initializer_list<std::pair<const char *, const char *>> cells) {
        for (const auto &cell : cells) {
            add(cell.first, cell.second);
        }
    }
    FakeRow(const FakeRow &) = delete;
    FakeRow &operator=(const FakeRow &) = delete;

    void add(const char *name, const char *value) {
        names_.push_back(keep(name));
        values_.push_back(keep(value));
    }

    int columns() const { return static_cast<int>(names_.size()); }
    char **values() { return values_.data(); }
    char **names() { return names_.data(); }
    Row row() { return {columns(), values(), names()}; }

private:
    char *keep(const char *text) {
        if (text == nullptr) {
            return nullptr;
        }
        texts_.push_back(text);
        return texts_.back().data();
    }

    std::list<std::string> texts_;  // these stay where they are
    std::vector<char *> names_;
    std::vector<char *> values_;
};

#endif
