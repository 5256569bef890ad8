#include "tests/support/device_test.hh"

#include <stdlib.h>
#include <string.h>
#include <unistd.h>

namespace {

constexpr char sandbox_marker[] = "/.cmpnt-sandbox";

void empty_list(cmpnt_list_head *head) {
    while (head->next != head) {
        cmpnt_list_head *link = head->next;
        link->prev->next = link->next;
        link->next->prev = link->prev;
        free(CMPNT_UPGRADE_NODE(link));
    }
}

void empty_lists() {
    for (cmpnt_list_head *head :
         {&cmpnt_upgrade_list, &cmpnt_hp_list, &auto_sync_list, &app_sync_list}) {
        empty_list(head);
    }
    cmpnt_free_sign_verify();
}

}  // namespace

void DeviceTest::SetUp() {
    for (const char *folder : {"/var", "/data", "/tmp", "/opt"}) {
        for (const std::string &name : names_in(folder)) {
            remove_tree(std::string(folder) + "/" + name);
        }
    }
    unsetenv("TMPDIR");
    platform = PlatformRecorder();
    g_cmpnt_dbg_level = 0xF;
    memset(&g_dev_info, 0, sizeof(g_dev_info));
    empty_lists();
    cmpnt_sign_verify_init();
    fault::reset();
}

void DeviceTest::TearDown() {
    fault::reset();
    empty_lists();
}

int main(int argc, char **argv) {
    testing::InitGoogleTest(&argc, argv);
    // The tests write and delete on the device's fixed paths.
    if (!testing::GTEST_FLAG(list_tests) && access(sandbox_marker, F_OK) != 0) {
        fprintf(stderr, "%s: run me with scripts/sandbox\n", argv[0]);
        return 70;
    }
    return RUN_ALL_TESTS();
}
