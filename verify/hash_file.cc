// Loading a hash list file.
#include "verify/hash_file.hh"

#include <stdio.h>
#include <string.h>

#include "common/guard.hh"
#include "common/log.hh"
#include "common/open_stream.hh"
#include "common/split_text.hh"
#include "verify/hash_list.hh"
#include "verify/list_line.hh"

namespace {

constexpr char loader[] = "cmpnt_get_hash_info";  // whose steps these are

// Every single blank parts two fields, and the two in front of a name part three.
constexpr char separators[] = "  ";
constexpr int32_t field_limit = 16;
enum Field { hash_field = 0, name_field = 2, required_fields = 3 };

using Fields = SplitText<field_limit>;

int32_t add_fields(Fields &fields, HashIndex &index) {
    switch (cmpnt_add_hash_verify_list(fields.slot(name_field), fields.slot(hash_field), &index)) {
        case HashTexts::taken:
            fields.slot(name_field) = nullptr;
            fields.slot(hash_field) = nullptr;
            return 0;
        case HashTexts::not_taken:
            return 0;
        default:
            CMPNT_LOG_AS(log_error, loader, "cmpnt_add_hash_verify_list fail.\n");
            return -1;
    }
}

int32_t load_entry(const char *line, HashIndex &index) {
    Fields fields(line, separators);
    if (!fields.is_whole()) {
        CMPNT_LOG_AS(log_error, loader, "cmpnt_detach_install_queue fail.\n");
        return -1;
    }
    if (fields.count() < required_fields) {
        CMPNT_LOG_AS(log_error, loader, "hash file format err.\n");
        return -1;
    }
    return add_fields(fields, index);
}

// A line is blank when nothing is left of it in the whole buffer: what follows a zero byte counts.
int32_t load_line(const ListLine &line, HashIndex &index) {
    if (line.was_empty) {
        CMPNT_LOG_AS(log_trace, loader, "buf len is 0, continue.\n");
        return 0;
    }
    if (cmpnt_name_is_null(line.text, sizeof(line.text)) == 1) {
        CMPNT_LOG_AS(log_trace, loader, "buf is null, continue.\n");
        return 0;
    }
    return load_entry(line.text, index);
}

// Half a list would let the files of the other half pass: one that cannot be read to its end fails.
int32_t load_lines(FILE *file) {
    HashIndex index;
    ListLine line;
    while (read_list_line(file, line)) {
        if (load_line(line, index) != 0) {
            return -1;
        }
    }
    return ferror(file) == 0 ? 0 : -1;
}

}  // namespace

int32_t cmpnt_get_hash_info(const char *path) {
    Stream file(open_to_read(path));
    if (!file) {
        CMPNT_LOG(log_error, "open(%s) failed, reason: %s\n", path, strerror(errno));
        return -1;
    }
    if (load_lines(file.get()) != 0) {
        cmpnt_free_sign_verify();
        return -1;
    }
    return 0;
}
