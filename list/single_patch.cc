// Single patches among the upgrades: how many, in which state, which one, and the newest.
#include "list/single_patch.hh"

#include <string.h>

#include "common/log.hh"
#include "common/working_record.hh"
#include "list/global_info.hh"
#include "list/list.hh"

namespace {

// A list that a patch list kind names.
class PatchList {
public:
    explicit PatchList(int32_t kind) : holds_smus_(kind == CMPNT_SINGLES_OF_SMU_LIST) {}

    // The link of the index-th single patch, counted from 1, or null; and how many were met.
    const cmpnt_list_head *find_single(int32_t index, int32_t *met) const {
        const cmpnt_list_head *head = holds_smus_ ? &cmpnt_smu_list : &cmpnt_upgrade_list;
        *met = 0;
        for (const cmpnt_list_head *link = head->next; link != head; link = link->next) {
            if (is_single(link) && ++*met == index) {
                return link;
            }
        }
        return nullptr;
    }

    // An SMU's fields lie in the record as they lie in the SMU, behind the id that it does not have.
    void copy(const cmpnt_list_head *link, cmpnt_upgrade_value *out) const {
        if (!holds_smus_) {
            *out = upgrade_node_of(link)->value;
            return;
        }
        constexpr size_t offset = offsetof(cmpnt_upgrade_value, op_flag);
        static_assert(offset + sizeof(cmpnt_smu_value) ==
                      offsetof(cmpnt_upgrade_value, patch_type) + sizeof(out->patch_type));
        memcpy(reinterpret_cast<char *>(out) + offset, &smu_node_of(link)->value,
               sizeof(cmpnt_smu_value));
    }

private:
    bool is_single(const cmpnt_list_head *link) const {
        return holds_smus_ ? is_single_patch(smu_node_of(link)->value)
                           : is_single_patch(upgrade_node_of(link)->value);
    }

    bool holds_smus_;
};

}  // namespace

void cmpnt_get_single_patch_num(int32_t *count, int32_t kind) {
    if (count != nullptr) {
        constexpr int32_t none = 0;  // an index that no patch has
        PatchList(kind).find_single(none, count);
    }
}

int32_t cmpnt_is_target_state_single_patch(const char *state) {
    if (state == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return 0;
    }
    for (const cmpnt_upgrade_value &value : UpgradeRecords(&cmpnt_upgrade_list)) {
        if (is_single_patch(value) && strcmp(value.state_name, state) == 0) {
            return 1;
        }
    }
    return 0;
}

void cmpnt_get_smu_version_by_index(cmpnt_upgrade_value *out, int32_t index, int32_t kind) {
    if (out == nullptr) {
        CMPNT_LOG(log_error, "param is null.\n");
        return;
    }
    memset(out, 0, sizeof(*out));
    const PatchList list(kind);
    const cmpnt_list_head *link = list.find_single(index, &g_variable.single_patch_index);
    if (link != nullptr) {
        list.copy(link, out);
    }
}

// What cannot be told apart by version fails; more than two are not compared at all.
int32_t cmpnt_get_newest_single_patch(cmpnt_upgrade_value *out, int32_t kind) {
    if (out == nullptr) {
        CMPNT_LOG(log_error, "param is null\n");
        return -1;
    }
    memset(out, 0, sizeof(*out));
    int32_t count = 0;
    cmpnt_get_single_patch_num(&count, kind);
    if (count != 1 && count != 2) {
        return 0;
    }
    cmpnt_upgrade_value first, second;
    cmpnt_get_smu_version_by_index(&first, 1, kind);
    const cmpnt_upgrade_value *newest = &first;
    if (count == 2) {
        cmpnt_get_smu_version_by_index(&second, 2, kind);
        switch (cmpnt_version_compare(first.patch_ver, second.patch_ver)) {
            case CMPNT_VERSION_EQUAL:
                CMPNT_LOG(log_error, "version invalid, first_ver(%s), second_ver(%s).\n",
                          first.patch_ver, second.patch_ver);
                return -1;
            case CMPNT_VERSION_OLDER:
                newest = &second;
                break;
            default:
                break;
        }
    }
    cmpnt_get_global_info(out, newest, kind);
    return 0;
}
