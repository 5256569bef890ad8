#include <string.h>

#include "tests/support/device_test.hh"

TEST(Md5Names, EncodesTheLowByteFirst) {
    const uint32_t words[] = {0x04030201, 0xFFFEFDFC, 0x80000000};
    uint8_t bytes[16];
    memset(bytes, 0x5A, sizeof(bytes));
    MD5Encode(bytes, words, 12);
    const uint8_t expected[16] = {1, 2, 3, 4,    0xFC, 0xFD, 0xFE, 0xFF,
                                  0, 0, 0, 0x80, 0x5A, 0x5A, 0x5A, 0x5A};
    EXPECT_EQ(memcmp(bytes, expected, sizeof(bytes)), 0);
}

TEST(Md5Names, DecodesTheLowByteFirst) {
    const uint8_t bytes[] = {1, 2, 3, 4, 0xFC, 0xFD, 0xFE, 0xFF, 0, 0, 0, 0x80};
    uint32_t words[4] = {9, 9, 9, 9};
    MD5Decode(words, bytes, 12);
    EXPECT_EQ(words[0], 0x04030201u);
    EXPECT_EQ(words[1], 0xFFFEFDFCu);
    EXPECT_EQ(words[2], 0x80000000u);
    EXPECT_EQ(words[3], 9u);
}

TEST(Md5Names, CodesBytesAtAnyAddress) {
    uint8_t bytes[12];
    uint32_t word = 0;
    for (size_t at = 0; at < 8; at++) {
        const uint32_t expected = 0x89ABCDEF + static_cast<uint32_t>(at);
        MD5Encode(bytes + at, &expected, 4);
        EXPECT_EQ(bytes[at], 0xEF + at);
        EXPECT_EQ(bytes[at + 3], 0x89);
        MD5Decode(&word, bytes + at, 4);
        EXPECT_EQ(word, expected);
    }
}

TEST(Md5Names, CodesNoMoreThanTheLength) {
    for (uint32_t length = 0; length <= 64; length += 4) {
        uint32_t words[17] = {};
        uint8_t bytes[68];
        memset(bytes, 1, sizeof(bytes));
        MD5Decode(words, bytes, length);
        EXPECT_EQ(words[length / 4], 0u) << length;
        EXPECT_EQ(length == 0 ? 0x01010101u : words[length / 4 - 1], 0x01010101u) << length;
        memset(words, 0, sizeof(words));
        MD5Encode(bytes, words, length);
        EXPECT_EQ(bytes[length], 1) << length;
        EXPECT_EQ(length == 0 ? 0 : bytes[length - 1], 0) << length;
    }
}

TEST(Md5Names, CodeWholeWordsOnly) {
    const uint32_t words[2] = {};
    uint8_t bytes[8] = {1, 1, 1, 1, 1, 1, 1, 1};
    MD5Encode(bytes, words, 7);
    EXPECT_EQ(bytes[3], 0);
    EXPECT_EQ(bytes[4], 1);
    uint32_t decoded[2] = {9, 9};
    MD5Decode(decoded, bytes, 7);
    EXPECT_EQ(decoded[0], 0u);
    EXPECT_EQ(decoded[1], 9u);
}

TEST(Md5Names, LeaveNullAlone) {
    uint32_t word = 9;
    uint8_t bytes[4] = {8, 8, 8, 8};
    MD5Encode(nullptr, &word, 4);
    MD5Encode(bytes, nullptr, 4);
    MD5Decode(nullptr, bytes, 4);
    MD5Decode(&word, nullptr, 4);
    EXPECT_EQ(word, 9u);
    EXPECT_EQ(bytes[0], 8);
}
