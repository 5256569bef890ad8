/* The exported header is C99: this host is compiled as such, with every warning an error, and linked
 * with the shared library. */
#include "libcmpnt_db.h"

#include <string.h>

/* A host that takes the address of the library's data must see the library's own objects. */
static int data_is_shared(void) {
    cmpnt_list_head *head = &cmpnt_upgrade_list;
    cmpnt_upgrade_value value;

    memset(&value, 0, sizeof(value));
    cmpnt_upgrade_list_init();
    if (insert_cmpnt_upgrade_db_to_list(&value, CMPNT_UPGRADE_LIST) != 0) {
        return 0;
    }
    if (head->next == head || CMPNT_UPGRADE_NODE(head->next)->value.card_id != 0) {
        return 0;
    }
    recycle_upgrade_list(CMPNT_UPGRADE_LIST);
    return head->next == head && head->prev == head;
}

static int level_is_shared(void) {
    cmpnt_set_level(4);
    if (g_cmpnt_dbg_level != 4) {
        return 0;
    }
    g_cmpnt_dbg_level = 0;
    g_dev_info.role = CMPNT_ROLE_BOX;
    return cmpnt_version_compare("1.2.10", "1.2.9") == 4;
}

int main(void) { return data_is_shared() && level_is_shared() ? 0 : 1; }
