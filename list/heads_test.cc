#include <algorithm>

#include "tests/support/device_test.hh"
#include "tests/support/upgrade_records.hh"

namespace {

using Heads = std::vector<cmpnt_list_head *>;

const Heads all_heads = {&cmpnt_upgrade_list, &cmpnt_hp_list,  &cmpnt_smu_list,
                         &hash_verify_list,   &auto_sync_list, &app_sync_list};

bool is_empty(const cmpnt_list_head *head) { return head->next == head && head->prev == head; }

// Before any test touches them.
const bool all_were_empty_at_load = [] {
    for (const cmpnt_list_head *head : all_heads) {
        if (!is_empty(head)) {
            return false;
        }
    }
    return true;
}();

struct Initialiser {
    const char *name;
    void (*run)();
    Heads heads;
};

const Initialiser initialisers[] = {
    {"upgrade", cmpnt_upgrade_list_init, {&cmpnt_upgrade_list}},
    {"smu", cmpnt_smu_list_init, {&cmpnt_smu_list}},
    {"hp", cmpnt_hp_list_init, {&cmpnt_hp_list}},
    {"hash_value", cmpnt_hash_value_list_init, {&hash_verify_list}},
    {"client",
     cmpnt_client_list_init,
     {&cmpnt_upgrade_list, &cmpnt_smu_list, &cmpnt_hp_list, &hash_verify_list}},
    {"begin", cmpnt_begin_list_init, {&cmpnt_upgrade_list, &hash_verify_list, &cmpnt_hp_list}},
};

}  // namespace

TEST(ListHeads, AreEmptyAtLoad) { EXPECT_TRUE(all_were_empty_at_load); }

class ListInit : public DeviceTest, public testing::WithParamInterface<Initialiser> {
protected:
    // Each head holds one node, that no list owns.
    void SetUp() override {
        DeviceTest::SetUp();
        for (size_t i = 0; i < all_heads.size(); i++) {
            all_heads[i]->next = all_heads[i]->prev = &nodes[i].link;
            nodes[i].link.next = nodes[i].link.prev = all_heads[i];
        }
    }

    void TearDown() override {
        for (cmpnt_list_head *head : all_heads) {
            head->next = head->prev = head;
        }
        DeviceTest::TearDown();
    }

    cmpnt_upgrade_node nodes[6] = {};
};

TEST_P(ListInit, EmptiesItsHeadsAndNoOther) {
    GetParam().run();
    for (const cmpnt_list_head *head : all_heads) {
        const Heads &own = GetParam().heads;
        EXPECT_EQ(is_empty(head), std::find(own.begin(), own.end(), head) != own.end());
    }
}

TEST_P(ListInit, LeavesTheNodesAsTheyAre) {
    GetParam().run();
    for (size_t i = 0; i < all_heads.size(); i++) {
        EXPECT_EQ(nodes[i].link.next, all_heads[i]);
        EXPECT_EQ(nodes[i].link.prev, all_heads[i]);
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_P(ListInit, MakesAHeadOfAnyContentEmpty) {
    for (cmpnt_list_head *head : all_heads) {
        head->next = head->prev = nullptr;
    }
    GetParam().run();
    for (const cmpnt_list_head *head : GetParam().heads) {
        EXPECT_TRUE(is_empty(head));
    }
}

INSTANTIATE_TEST_SUITE_P(All, ListInit, testing::ValuesIn(initialisers),
                         [](const auto &test) { return test.param.name; });
