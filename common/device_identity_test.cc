#include "common/device_identity.hh"

#include <limits.h>

#include "p_dev.pb-c.h"
#include "tests/support/device_test.hh"

namespace {

PDev__DpLibMyInfo identity_of(int32_t node_type) {
    PDev__DpLibMyInfo identity = P_DEV__DP_LIB_MY_INFO__INIT;
    memcpy(&identity.dm_my_node_type, &node_type, sizeof(node_type));
    return identity;
}

int32_t tell(int32_t command, void *result, int32_t status = 0) {
    vx_mom_record record = {command, result, status};
    return cmpnt_get_dp_lib_my_info_cb(nullptr, &record);
}

int32_t tell_node_type(int32_t node_type) {
    PDev__DpLibMyInfo identity = identity_of(node_type);
    return tell(VX_MOM_VALUE, &identity);
}

constexpr char callback_name[] = "cmpnt_get_dp_lib_my_info_cb";

}  // namespace

class DeviceIdentity : public DeviceTest {};

TEST_F(DeviceIdentity, IsSubscribedAndThenReadWithTheSameCallback) {
    EXPECT_EQ(cmpnt_get_dp_lib_my_info(0xFFFFFFF0), 0);
    ASSERT_EQ(platform.mom.size(), 2u);
    EXPECT_EQ(platform.mom[0].operation, "subscribe");
    EXPECT_EQ(platform.mom[1].operation, "hgetall");
    for (const MomCall &call : platform.mom) {
        EXPECT_EQ(call.store, 0xFFFFFFF0);
        EXPECT_EQ(call.number, 1);
        EXPECT_EQ(call.message_name, "p_dev.dp_lib_my_info");
        EXPECT_EQ(call.callback, cmpnt_get_dp_lib_my_info_cb);
        EXPECT_EQ(call.packed_size, 0u) << "the descriptor alone is asked for";
        EXPECT_EQ(call.reserved, nullptr);
        EXPECT_EQ(call.context, nullptr);
    }
    EXPECT_EQ(platform.mom[0].message, platform.mom[1].message);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(DeviceIdentity, IsNotReadWhenTheSubscriptionFails) {
    platform.subscribe_result = 17;
    platform.hgetall_result = 18;
    EXPECT_EQ(cmpnt_get_dp_lib_my_info(1), 17);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_dp_lib_my_info", "vx_mom_subscribe failed\n"));
    EXPECT_EQ(platform.mom.size(), 1u);
    EXPECT_EQ(trace_messages().size(), 1u);
}

TEST_F(DeviceIdentity, TellsThePlatformsCodeWhenTheReadFails) {
    platform.hgetall_result = -18;
    EXPECT_EQ(cmpnt_get_dp_lib_my_info(1), -18);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_dp_lib_my_info", "vx_mom_hgetall failed\n"));
    EXPECT_EQ(trace_messages().size(), 1u);
}

TEST_F(DeviceIdentity, IsARoleForEveryNodeType) {
    const struct {
        int32_t node_type, role;
    } cases[] = {{0, 0}, {1, 1}, {2, 2}, {3, 3},  {4, 3},       {5, 3},
                 {6, 3}, {7, 0}, {8, 0}, {-1, 0}, {INT_MAX, 0}, {INT_MIN, 0}};
    for (const auto &c : cases) {
        g_dev_info.role = 0;
        forget_log();
        EXPECT_EQ(tell_node_type(c.node_type), 0);
        EXPECT_EQ(g_dev_info.role, c.role) << c.node_type;
        EXPECT_TRUE(logged("CMPNT_TRACE", callback_name,
                           "get node_type is " + std::to_string(c.role) + "\n"));
    }
}

TEST_F(DeviceIdentity, KeepsTheFirstKnownRole) {
    for (int32_t first : {1, 2, 3}) {
        g_dev_info.role = 0;
        tell_node_type(first);
        for (int32_t later : {1, 2, 3, 4, 5, 6}) {
            forget_log();
            EXPECT_EQ(tell_node_type(later), 0);
            EXPECT_EQ(g_dev_info.role, first);
            EXPECT_TRUE(logged("CMPNT_TRACE", callback_name,
                               "get node_type is " + std::to_string(first) + "\n"));
        }
    }
}

TEST_F(DeviceIdentity, IsForgottenWithAnUnknownNodeTypeAndThenLearntAnew) {
    for (int32_t unknown : {0, 7, 8, -1}) {
        tell_node_type(P_DEV__DM_NODE_TYPE_E__DM_TYPE_LC);
        EXPECT_EQ(g_dev_info.role, CMPNT_ROLE_CARD);
        tell_node_type(unknown);
        EXPECT_EQ(g_dev_info.role, CMPNT_ROLE_UNKNOWN);
    }
    tell_node_type(P_DEV__DM_NODE_TYPE_E__DM_TYPE_BOX);
    EXPECT_EQ(g_dev_info.role, CMPNT_ROLE_BOX);
}

TEST_F(DeviceIdentity, LeavesTheHostsWordsAlone) {
    memset(&g_dev_info, 0x5A, sizeof(g_dev_info));
    g_dev_info.role = 0;
    const cmpnt_dev_info before = g_dev_info;
    tell_node_type(2);
    EXPECT_EQ(memcmp(g_dev_info.host_head, before.host_head, sizeof(before.host_head)), 0);
    EXPECT_EQ(memcmp(g_dev_info.host_tail, before.host_tail, sizeof(before.host_tail)), 0);
}

TEST_F(DeviceIdentity, AnnouncesTheNewRoleThroughThePrinterOfThatRole) {
    tell_node_type(P_DEV__DM_NODE_TYPE_E__DM_TYPE_SFC);
    ASSERT_EQ(platform.syslog.size(), 1u);
    EXPECT_TRUE(platform.syslog[0].card);
    tell_node_type(0);
    ASSERT_EQ(platform.syslog.size(), 2u);
    EXPECT_FALSE(platform.syslog[1].card);
}

TEST_F(DeviceIdentity, ComesPlainOrWrapped) {
    PDev__DpLibMyInfo identity = identity_of(2);
    vx_mom_wrapped_value wrapped = {&identity, {1, 2, 3, 4}, 0};
    for (int32_t command : {1, 24, 4, 6, 8}) {
        g_dev_info.role = 0;
        const bool plain = command == 1 || command == 24;
        EXPECT_EQ(tell(command, plain ? static_cast<void *>(&identity) : &wrapped), 0);
        EXPECT_EQ(g_dev_info.role, CMPNT_ROLE_MANAGEMENT_BOARD) << command;
    }
}

TEST_F(DeviceIdentity, IsRefusedInABadWrapping) {
    PDev__DpLibMyInfo identity = identity_of(2);
    vx_mom_wrapped_value bad = {&identity, {0, 0, 0, 0}, 5};
    for (int32_t command : {4, 6, 8}) {
        for (void *result : {static_cast<void *>(nullptr), static_cast<void *>(&bad)}) {
            forget_log();
            EXPECT_EQ(tell(command, result), -1);
            EXPECT_TRUE(logged("CMPNT_ERROR", callback_name, "res unexpected, error!\n"));
            EXPECT_EQ(trace_messages().size(), 1u);
        }
    }
    EXPECT_EQ(g_dev_info.role, CMPNT_ROLE_UNKNOWN);
}

TEST_F(DeviceIdentity, IsRefusedWithoutAMessage) {
    g_dev_info.role = CMPNT_ROLE_BOX;
    vx_mom_wrapped_value empty = {nullptr, {0, 0, 0, 0}, 0};
    for (int32_t command : {1, 24, 4, 6, 8}) {
        const bool plain = command == 1 || command == 24;
        forget_log();
        EXPECT_EQ(tell(command, plain ? nullptr : &empty), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", callback_name, "param is null\n")) << command;
        EXPECT_EQ(trace_messages().size(), 1u);
    }
    EXPECT_EQ(g_dev_info.role, CMPNT_ROLE_BOX);
}

TEST_F(DeviceIdentity, IsNotYetThereWhenTheSubscriptionIsAccepted) {
    g_dev_info.role = CMPNT_ROLE_BOX;
    EXPECT_EQ(tell(VX_MOM_SUBSCRIBED, nullptr), 0);
    EXPECT_TRUE(logged("CMPNT_TRACE", callback_name, "get dp lib my info subscribe success\n"));
    EXPECT_EQ(g_dev_info.role, CMPNT_ROLE_BOX);
}

TEST_F(DeviceIdentity, IsRefusedWithABadStatusWhateverTheCommand) {
    PDev__DpLibMyInfo identity = identity_of(2);
    for (int32_t command : {1, 4, 24, 29, 99}) {
        forget_log();
        EXPECT_EQ(tell(command, &identity, -1), -1);
        EXPECT_TRUE(logged("CMPNT_ERROR", callback_name, "param is error\n"));
        EXPECT_EQ(trace_messages().size(), 1u);
    }
    forget_log();
    EXPECT_EQ(cmpnt_get_dp_lib_my_info_cb(nullptr, nullptr), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", callback_name, "param is error\n"));
    EXPECT_EQ(g_dev_info.role, CMPNT_ROLE_UNKNOWN);
}

TEST_F(DeviceIdentity, IgnoresOtherCommands) {
    PDev__DpLibMyInfo identity = identity_of(2);
    for (int32_t command : {0, 2, 3, 5, 7, 9, 23, 25, 28, 30, -1}) {
        forget_log();
        EXPECT_EQ(tell(command, &identity), -1);
        EXPECT_TRUE(logged("CMPNT_TRACE", callback_name,
                           "ignore my info callback cmd: " + std::to_string(command) + "\n"));
    }
    EXPECT_EQ(g_dev_info.role, CMPNT_ROLE_UNKNOWN);
}

TEST_F(DeviceIdentity, HasTheFieldsOfTheDataStoresRecord) {
    const struct {
        uint32_t number;
        const char *name;
        ProtobufCType type;
    } expected[] = {
        {5, "dm_my_node_type", PROTOBUF_C_TYPE_ENUM},
        {6, "slotid", PROTOBUF_C_TYPE_INT32},
        {7, "sslotid", PROTOBUF_C_TYPE_INT32},
        {8, "cpu_num", PROTOBUF_C_TYPE_INT32},
        {9, "local_peer_slotid", PROTOBUF_C_TYPE_INT32},
        {10, "card_type", PROTOBUF_C_TYPE_INT32},
        {11, "cpuid", PROTOBUF_C_TYPE_INT32},
        {12, "prod_serial", PROTOBUF_C_TYPE_BYTES},
        {13, "my_card_mac_addr", PROTOBUF_C_TYPE_BYTES},
        {14, "card_nodeid", PROTOBUF_C_TYPE_INT32},
        {15, "actual_card_type", PROTOBUF_C_TYPE_INT32},
    };
    const ProtobufCMessageDescriptor &descriptor = p_dev__dp_lib_my_info__descriptor;
    EXPECT_STREQ(descriptor.name, "p_dev.dp_lib_my_info");
    ASSERT_EQ(descriptor.n_fields, std::size(expected));
    for (size_t i = 0; i < std::size(expected); i++) {
        EXPECT_EQ(descriptor.fields[i].id, expected[i].number);
        EXPECT_STREQ(descriptor.fields[i].name, expected[i].name);
        EXPECT_EQ(descriptor.fields[i].type, expected[i].type);
        EXPECT_EQ(descriptor.fields[i].label, PROTOBUF_C_LABEL_NONE);
    }
    EXPECT_STREQ(p_dev__dm_node_type_e__descriptor.name, "p_dev.dm_node_type_e");
    EXPECT_EQ(p_dev__dm_node_type_e__descriptor.n_values, 8u);
}
