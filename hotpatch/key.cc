#include "hotpatch/key.hh"

#include <string.h>

namespace {

constexpr HotpatchKey text_key(const char *name, size_t offset, bool can_be_packed = true) {
    return {name, HotpatchKey::text, can_be_packed, offset};
}

#define FIELD(name) offsetof(cmpnt_upgrade_value, name)

constexpr HotpatchKey hotpatch_keys[] = {
    {"Is_hotpatch", HotpatchKey::hot_patch_bit, true, 0},
    text_key("Package", FIELD(pkg_name)),
    text_key("Hotpatch_file", FIELD(hotpatch_file)),
    text_key("Hotpatch_target_pkg", FIELD(hotpatch_target)),
    text_key("Hotpatch_target_path", FIELD(hotpatch_target_path)),
    text_key("Version", FIELD(cur_version), false),
    text_key("State", FIELD(state_name)),
    text_key("Pkg_path", FIELD(cur_pkg_path)),
};

#undef FIELD

}  // namespace

const HotpatchKey *find_hotpatch_key(const char *name) {
    for (const HotpatchKey &key : hotpatch_keys) {
        if (strcmp(key.name, name) == 0) {
            return &key;
        }
    }
    return nullptr;
}
