// The layout of the list records, which hosts share: the same on every width.
#include "libcmpnt_db.h"

#define OFFSET(field, offset)                                                                      \
    static_assert(offsetof(cmpnt_upgrade_value, field) == (offset), #field " has moved")

OFFSET(card_id, 0);
OFFSET(op_flag, 4);
OFFSET(patch_name, 8);
OFFSET(state_name, 88);
OFFSET(description, 113);
OFFSET(patch_ver, 369);
OFFSET(patch_id, 401);
OFFSET(effective_time, 481);
OFFSET(last_patch, 513);
OFFSET(patch_size, 596);
OFFSET(patch_order, 600);
OFFSET(patch_type, 604);
OFFSET(cur_flag, 608);
OFFSET(unused_word, 612);
OFFSET(pkg_name, 616);
OFFSET(cur_version, 696);
OFFSET(last_version, 728);
OFFSET(unused_text, 760);
OFFSET(cur_pkg_path, 1016);
OFFSET(pkg_state_name, 1276);
OFFSET(hotpatch_file, 1301);
OFFSET(hotpatch_target, 1381);
OFFSET(hotpatch_target_path, 1461);
OFFSET(hotpatch_target_pkg_path, 1721);
OFFSET(hotpatch_target_md5, 1981);
OFFSET(hotpatch_target_strip_md5, 2173);

static_assert(sizeof(cmpnt_upgrade_value) == 2368, "the upgrade record has another size");
static_assert(offsetof(cmpnt_upgrade_node, link) == 2368, "the link follows the record");
static_assert(sizeof(cmpnt_list_head) == 2 * sizeof(void *), "a head is two pointers");
