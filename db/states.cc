// State and sync flag words. The codes are stored in databases: they never change.
#include <string.h>

#include "common/log.hh"

namespace {

constexpr char unknown_word[] = "Unknow";

struct StateWord {
    const char *word;
    int32_t code;
};

// What the package manager calls its states; the words of invalid hot patches mean the state that
// the patch would be in.
constexpr StateWord understood_states[] = {
    {"installed", CMPNT_STATE_INSTALLED},        {"active", CMPNT_STATE_ACTIVE},
    {"invalid_hp_active", CMPNT_STATE_ACTIVE},   {"running", CMPNT_STATE_RUNNING},
    {"invalid_hp_running", CMPNT_STATE_RUNNING},
};

}  // namespace

int32_t cmpnt_conver_state_to_int(const char *state) {
    if (state == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return CMPNT_STATE_INIT;
    }
    for (const StateWord &known : understood_states) {
        if (strcmp(state, known.word) == 0) {
            return known.code;
        }
    }
    return CMPNT_STATE_INIT;
}

const char *cmpnt_conver_state_to_str(int32_t code) {
    switch (code) {
        case CMPNT_STATE_INIT:
            return "Init";
        case CMPNT_STATE_INSTALL_READY:
            return "Install_ready";
        case CMPNT_STATE_INSTALLED:
            return "installed";
        case CMPNT_STATE_ACTIVE_READY:
            return "Active_ready";
        case CMPNT_STATE_ACTIVE:
            return "active";
        case CMPNT_STATE_ACTIVE_COLD:
            return "Active_cold";
        case CMPNT_STATE_RUNNING:
            return "running";
        case CMPNT_STATE_DEACTIVE_COLD:
            return "Deactive_cold";
        case CMPNT_STATE_DEACTIVE_READY:
            return "Deactive_ready";
        case CMPNT_STATE_INVALID_HP_ACTIVE:
            return "invalid_hp_active";
        case CMPNT_STATE_INVALID_HP_RUNNING:
            return "invalid_hp_running";
        case CMPNT_STATE_INVALID_ACTIVE_READY:
            return "invalid_active_ready";
        case CMPNT_STATE_INVALID_ACTIVE_COLD:
            return "invalid_active_cold";
        case CMPNT_STATE_INVALID_DEACTIVE_READY:
            return "invalid_deactive_ready";
        case CMPNT_STATE_INVALID_DEACTIVE_COLD:
            return "invalid_deactive_cold";
        default:
            return unknown_word;
    }
}

const char *cmpnt_conver_sync_flag_to_str(int32_t flag) {
    switch (flag) {
        case 0:
            return "Init";
        case 1:
            return "Finish";
        default:
            CMPNT_LOG(log_error, "sync_flag error: %d\n", flag);
            return unknown_word;
    }
}
