// Parentheses in the arguments of a command: package files may have them in their names, and the
// shell would take them for its own.
#include <stdlib.h>
#include <string.h>

#include "common/command.hh"
#include "common/guard.hh"
#include "common/log.hh"

namespace {

// Room for the backslashes of one line, its terminator included.
constexpr size_t escape_room = 260;

}  // namespace

char *cmpnt_replace_brackets_str(const char *arguments) {
    const bool opens = strchr(arguments, '(') != nullptr;
    const bool closes = strchr(arguments, ')') != nullptr;
    const size_t length = strlen(arguments);
    const size_t size = length + (opens || closes ? escape_room : 1);
    HeapText escaped(new_text(size));
    if (!escaped) {
        CMPNT_LOG(log_error, "cmpnt_malloc fail.\n");
        return nullptr;
    }
    char *text = escaped.get();
    memcpy(text, arguments, length + 1);
    if (opens && cmpnt_replace(text, static_cast<int32_t>(size), "(", "\\(") != 0) {
        CMPNT_LOG(log_server_error, "cmpnt_replace fail, str_rep(%s).\n", text);
        return nullptr;
    }
    if (closes && cmpnt_replace(text, static_cast<int32_t>(size), ")", "\\)") != 0) {
        CMPNT_LOG(log_error, "cmpnt_replace fail, str_rep(%s).\n", text);
        return nullptr;
    }
    text[size - 1] = '\0';
    return escaped.release();
}
