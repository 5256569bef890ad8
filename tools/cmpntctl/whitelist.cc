#include "whitelist.hh"

#include <stdio.h>
#include <string.h>

#include <functional>
#include <memory>

#include "libcmpnt_db.h"

namespace cmpntctl {
namespace {

struct CloseFile {
    void operator()(FILE *file) const { fclose(file); }
};

// As the library reads them: a line of more than 1023 bytes is several, and the last character of
// each is cut, whatever it is. Until the caller has seen enough.
void for_each_line(const char *list,
                   const std::function<bool(size_t number, const std::string &line)> &look) {
    const std::unique_ptr<FILE, CloseFile> file(fopen(list, "re"));
    char line[CMPNT_LINE_SIZE];
    for (size_t number = 1; file && fgets(line, sizeof(line), file.get()) != nullptr;) {
        const size_t length = strlen(line);
        const bool has_newline = length > 0 && line[length - 1] == '\n';
        line[length > 0 ? length - 1 : 0] = '\0';
        if (!look(number, line)) {
            return;
        }
        number += has_newline ? 1 : 0;
    }
}

std::string trimmed(std::string text) {
    text.push_back('\0');
    return cmpnt_trim(text.data());
}

}  // namespace

std::vector<WhitelistLine> find_in_global_whitelist(const std::string &path) {
    std::vector<WhitelistLine> found;
    for_each_line(global_whitelist_path, [&](size_t number, const std::string &line) {
        if (line.compare(0, path.size(), path) == 0) {
            found.push_back({number, line, ""});
        }
        return found.empty();
    });
    return found;
}

std::vector<WhitelistLine> find_in_dynamic_whitelist(const std::string &path) {
    std::vector<WhitelistLine> found;
    for_each_line(dynamic_whitelist_path, [&](size_t number, const std::string &line) {
        const size_t comma = line.find(',');
        if (comma != std::string::npos && trimmed(line.substr(0, comma)) == path) {
            const size_t next = line.find(',', comma + 1);
            found.push_back({number, path, trimmed(line.substr(comma + 1, next - comma - 1))});
        }
        return true;
    });
    return found;
}

}  // namespace cmpntctl
