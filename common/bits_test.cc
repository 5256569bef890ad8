#include "tests/support/device_test.hh"

class Bits : public DeviceTest {};

TEST_F(Bits, AreSetAndCleared) {
    uint32_t word = 0x80000001;
    cmpnt_set_bit(&word, 0x6);
    EXPECT_EQ(word, 0x80000007);
    cmpnt_set_bit(&word, 0x5);
    EXPECT_EQ(word, 0x80000007);
    cmpnt_clear_bit(&word, 0x80000002);
    EXPECT_EQ(word, 0x5u);
    cmpnt_clear_bit(&word, 0);
    cmpnt_set_bit(&word, 0);
    EXPECT_EQ(word, 0x5u);
    cmpnt_clear_bit(&word, 0xFFFFFFFF);
    EXPECT_EQ(word, 0u);
}

TEST_F(Bits, OfNoWordAreNotTouched) {
    cmpnt_set_bit(nullptr, 1);
    cmpnt_clear_bit(nullptr, 1);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Bits, AreAChangeWhenOneOfTheMaskIsMissing) {
    const struct {
        uint32_t value, mask;
        int32_t missing;
    } cases[] = {
        {0x5, 0x4, 0},
        {0x1, 0x4, 1},
        {0x5, 0x5, 0},
        {0x5, 0x7, 1},
        {0x0, 0x0, 0},
        {0x7, 0x0, 0},
        {0x7FFFFFFF, 1u << 31, 1},
        {1u << 31, 1u << 31, 0},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(cmpnt_bit_is_change(c.value, c.mask), c.missing) << c.value << " " << c.mask;
    }
}
