#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/md5.h>
#include <string.h>

#include "digest/md5.hh"
#include "tests/support/device_test.hh"

namespace {

// Bytes without a pattern, the same each time.
void fill(uint8_t *bytes, size_t size) {
    uint32_t number = 12345;
    for (size_t i = 0; i < size; i++) {
        number = number * 1664525 + 1013904223;
        bytes[i] = static_cast<uint8_t>(number >> 24);
    }
}

void other_transform(uint32_t state[4], const uint8_t *block) {
    MD5_CTX other = {};
    other.A = state[0];
    other.B = state[1];
    other.C = state[2];
    other.D = state[3];
    MD5_Transform(&other, block);
    state[0] = other.A;
    state[1] = other.B;
    state[2] = other.C;
    state[3] = other.D;
}

}  // namespace

TEST(Md5Blocks, TransformsABlock) {
    uint32_t state[4] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
    uint8_t block[md5_block_size] = {'a', 'b', 'c', 0x80};
    block[56] = 24;  // bits
    MD5Transform(state, block);
    EXPECT_EQ(state[0], 0x98500190u);
    EXPECT_EQ(state[1], 0xb04fd23cu);
    EXPECT_EQ(state[2], 0x7d3f96d6u);
    EXPECT_EQ(state[3], 0x727fe128u);
}

TEST(Md5Blocks, TransformsAnyBlockInAnyStateAtAnyAddress) {
    uint8_t bytes[1000];
    fill(bytes, sizeof(bytes));
    uint32_t state[4] = {1, 0xFFFFFFFF, 0, 0x80000000};
    uint32_t expected[4];
    memcpy(expected, state, sizeof(state));
    for (size_t at = 0; at + md5_block_size <= sizeof(bytes); at++) {
        MD5Transform(state, bytes + at);
        other_transform(expected, bytes + at);
        ASSERT_EQ(memcmp(state, expected, sizeof(state)), 0) << at;
    }
}

TEST(Md5Blocks, TakesManyBlocksAsOneAfterTheOther) {
    constexpr uint32_t blocks = 5;
    uint8_t bytes[blocks * md5_block_size];
    fill(bytes, sizeof(bytes));
    for (uint32_t count = 0; count <= blocks; count++) {
        uint32_t state[4] = {5, 6, 7, 8};
        uint32_t expected[4] = {5, 6, 7, 8};
        md5_blocks(state, bytes, count);
        for (uint32_t i = 0; i < count; i++) {
            other_transform(expected, bytes + i * md5_block_size);
        }
        EXPECT_EQ(memcmp(state, expected, sizeof(state)), 0) << count;
    }
}

TEST(Md5Blocks, LeavesNullAlone) {
    uint32_t state[4] = {1, 2, 3, 4};
    const uint8_t block[md5_block_size] = {};
    MD5Transform(nullptr, block);
    MD5Transform(state, nullptr);
    EXPECT_EQ(state[0], 1u);
    EXPECT_EQ(state[3], 4u);
}
