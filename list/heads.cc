// The global lists. Each head is empty from the start: nobody has to have initialised it before the
// first look.
#include "libcmpnt_db.h"
#include "list/list.hh"

cmpnt_list_head cmpnt_upgrade_list = {&cmpnt_upgrade_list, &cmpnt_upgrade_list};
cmpnt_list_head cmpnt_hp_list = {&cmpnt_hp_list, &cmpnt_hp_list};
cmpnt_list_head cmpnt_smu_list = {&cmpnt_smu_list, &cmpnt_smu_list};
cmpnt_list_head hash_verify_list = {&hash_verify_list, &hash_verify_list};
cmpnt_list_head auto_sync_list = {&auto_sync_list, &auto_sync_list};
cmpnt_list_head app_sync_list = {&app_sync_list, &app_sync_list};

void cmpnt_upgrade_list_init(void) { list_make_empty(&cmpnt_upgrade_list); }

void cmpnt_smu_list_init(void) { list_make_empty(&cmpnt_smu_list); }

void cmpnt_hp_list_init(void) { list_make_empty(&cmpnt_hp_list); }

void cmpnt_hash_value_list_init(void) { list_make_empty(&hash_verify_list); }

void cmpnt_client_list_init(void) {
    cmpnt_upgrade_list_init();
    cmpnt_smu_list_init();
    cmpnt_hp_list_init();
    cmpnt_hash_value_list_init();
}

// Start-up programs leave the SMU list to the client.
void cmpnt_begin_list_init(void) {
    cmpnt_upgrade_list_init();
    cmpnt_hash_value_list_init();
    cmpnt_hp_list_init();
}
