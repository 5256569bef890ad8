// Words for the numbers of upgrade commands. The two tables disagree on purpose: some commands are
// printed without a word of their own, and some have one but are not printed.
#include "libcmpnt_db.h"

namespace {

struct CommandWord {
    int32_t cmd;
    const char *word;
    bool printed;
};

constexpr char unknown[] = "Unknown";

constexpr CommandWord command_words[] = {
    {2, "Add", true},
    {3, "Activate", true},
    {4, "Commit", true},
    {5, "Deactivate", true},
    {6, "Remove", true},
    {7, "Clear", true},
    {121, "Sync running", false},
    {142, "Active", true},
    {143, "Deactive", true},
    {144, "Running", true},
    {145, "Delete", true},
    {146, "Install to running", true},
    {150, "Sync add", false},
    {151, "Sync active", false},
    {157, "Autoload active", true},
    {158, "Autoload running", true},
    {170, unknown, true},
    {172, unknown, true},
    {173, unknown, true},
    {174, "Path autoload", true},
};

const CommandWord *find_command(int32_t cmd) {
    for (const CommandWord &entry : command_words) {
        if (entry.cmd == cmd) {
            return &entry;
        }
    }
    return nullptr;
}

}  // namespace

const char *cmpnt_convert_cmd_to_str(int32_t cmd) {
    const CommandWord *entry = find_command(cmd);
    return entry == nullptr ? unknown : entry->word;
}

uint32_t cmpnt_cmd_is_need_printf(int32_t cmd) {
    const CommandWord *entry = find_command(cmd);
    return entry != nullptr && entry->printed ? 1 : 0;
}
