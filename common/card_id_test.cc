#include "tests/support/device_test.hh"

class CardId : public DeviceTest {};

TEST_F(CardId, PacksThreeBytes) {
    const struct {
        uint32_t dev, slot, sslot, card_id;
    } cases[] = {
        {1, 2, 3, 0x030201},
        {0x1FF, 2, 3, 0x0302FF},
        {0, 0x1FF, 0, 0x00FF00},
        {0, 0, 0x1FF, 0xFF0000},
        {0, 0, 0, 0},
        {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFF},
    };
    for (const auto &c : cases) {
        uint32_t card_id = 0xDEADBEEF;
        cmpnt_combine_card_id(&card_id, c.dev, c.slot, c.sslot);
        EXPECT_EQ(card_id, c.card_id);
        EXPECT_EQ(cmpnt_get_devid_by_card_id(card_id), c.dev & 0xFF);
        EXPECT_EQ(cmpnt_get_slotid_by_card_id(card_id), c.slot & 0xFF);
        EXPECT_EQ(cmpnt_get_sslotid_by_card_id(card_id), c.sslot & 0xFF);
    }
}

TEST_F(CardId, HasNothingInItsFourthByte) {
    EXPECT_EQ(cmpnt_get_devid_by_card_id(0xFF302010), 0x10u);
    EXPECT_EQ(cmpnt_get_slotid_by_card_id(0xFF302010), 0x20u);
    EXPECT_EQ(cmpnt_get_sslotid_by_card_id(0xFF302010), 0x30u);
}

TEST_F(CardId, GoesNowhereQuietly) {
    cmpnt_combine_card_id(nullptr, 1, 2, 3);
    EXPECT_TRUE(trace_messages().empty());
}
