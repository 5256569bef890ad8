#include "tests/support/device_test.hh"

class DeviceRole : public DeviceTest {};

TEST_F(DeviceRole, IsTheCallersAndNotTheDevices) {
    g_dev_info.role = 2;
    EXPECT_EQ(cmpnt_device_is_master_mgnt(1), 1);
    g_dev_info.role = 1;
    EXPECT_EQ(cmpnt_device_is_master_mgnt(2), 0);
}

TEST_F(DeviceRole, OneIsTheMaster) {
    for (int32_t role : {-1, 0, 1, 2, 3, 257}) {
        EXPECT_EQ(cmpnt_device_is_master_mgnt(role), role == 1 ? 1 : 0) << role;
    }
}

TEST_F(DeviceRole, TwoIsTheBackupOrASlotCardByItsFlag) {
    for (int32_t role : {-1, 0, 1, 2, 3}) {
        for (int32_t flag : {-1, 0, 1, 2, 257}) {
            const bool member = role == 2;
            EXPECT_EQ(cmpnt_device_is_backup_mgnt(role, flag), member && flag == 1 ? 1 : 0);
            EXPECT_EQ(cmpnt_device_is_slot_card(role, flag), member && flag != 1 ? 1 : 0);
        }
    }
}
