// The verification service's list of files that pass with another digest than the listed one.
#include "verify/dynamic_whitelist.hh"

#include <errno.h>
#include <string.h>

#include "common/guard.hh"
#include "common/log.hh"
#include "common/open_stream.hh"
#include "common/split_text.hh"
#include "verify/list_line.hh"
#include "verify/verify_paths.hh"

char whitelist_client_name[] = "cmpnt_upgrade_c";

namespace {

constexpr char reader[] = "file_exist_in_dynamic_whitelist";  // whose lines these are
constexpr int32_t field_limit = CMPNT_LINE_SIZE;              // more than a line has room for

enum class Answer { go_on, no, yes };

bool is_own(const char *client) { return strcmp(client, whitelist_client_name) == 0; }

Answer match(const char *path, int32_t mode, const char *entry_path, const char *client) {
    switch (mode) {
        case whitelist_any_client:
            return strcmp(entry_path, path) == 0 ? Answer::yes : Answer::go_on;
        case whitelist_own_entry:
            return strcmp(entry_path, path) == 0 && is_own(client) ? Answer::yes : Answer::go_on;
        default:
            return Answer::no;
    }
}

Answer ask_line(const char *line, const char *path, int32_t mode) {
    if (line[0] == '\0') {
        return Answer::go_on;
    }
    const SplitText<field_limit> fields(line, ",");
    if (!fields.is_whole()) {
        CMPNT_LOG_AS(log_error, reader, "cmpnt_detach_install_queue fail.\n");
        return Answer::no;
    }
    if (fields.count() < 2) {
        CMPNT_LOG_AS(log_error, reader, "dynamic whitelist format err.\n");
        return Answer::go_on;
    }
    return match(path, mode, fields[0], fields[1]);
}

// A line that is complained about has to be met again by each question.
bool add_line(FileIndex &index, char *line) {
    if (line[0] == '\0') {
        return true;
    }
    char *rest = line;
    const char *path = cmpnt_trim(strsep(&rest, ","));
    if (rest == nullptr || !index.texts.add(path)) {
        return false;
    }
    return !is_own(cmpnt_trim(strsep(&rest, ","))) || index.marked_texts.add(path);
}

}  // namespace

int32_t file_exist_in_dynamic_whitelist(const char *path, int32_t mode) {
    if (path == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return 0;
    }
    if (file_is_exist(dynamic_whitelist_path) == 0) {
        return 0;
    }
    const Stream list(open_to_read(dynamic_whitelist_path));
    if (!list) {
        CMPNT_LOG(log_error, "open(%s) failed, reason: %s\n", dynamic_whitelist_path,
                  strerror(errno));
        return 0;
    }
    Answer answer = Answer::go_on;
    ListLine line;
    while (answer == Answer::go_on && read_list_line(list.get(), line)) {
        answer = ask_line(line.text, path, mode);
    }
    return answer == Answer::yes ? 1 : 0;
}

DynamicWhitelist::DynamicWhitelist() : index_(dynamic_whitelist_path, add_line) {}

bool DynamicWhitelist::has(const char *path, WhitelistMode mode) {
    if (path == nullptr || !index_.is_current()) {
        return file_exist_in_dynamic_whitelist(path, mode) != 0;
    }
    return mode == whitelist_own_entry ? index_.marked_texts.contains(path)
                                       : index_.texts.contains(path);
}
