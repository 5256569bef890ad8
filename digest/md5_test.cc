#include "digest/md5.hh"

#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/evp.h>
#include <openssl/md5.h>
#include <string.h>

#include <random>

#include "tests/support/device_test.hh"

namespace {

using Bytes = std::vector<uint8_t>;

Bytes random_bytes(size_t size) {
    static std::mt19937 random(19920401);
    Bytes bytes(size);
    for (uint8_t &byte : bytes) {
        byte = static_cast<uint8_t>(random());
    }
    return bytes;
}

std::string as_text(const uint8_t *digest) {
    std::string text;
    for (size_t i = 0; i < md5_digest_size; i++) {
        char digits[3];
        snprintf(digits, sizeof(digits), "%02x", digest[i]);
        text += digits;
    }
    return text;
}

std::string finish(cmpnt_md5_context *context) {
    uint8_t digest[md5_digest_size];
    MD5Final(digest, context);
    return as_text(digest);
}

cmpnt_md5_context started() {
    cmpnt_md5_context context;
    memset(&context, 0xA5, sizeof(context));  // as callers have it on their stacks
    MD5Init(&context);
    return context;
}

std::string md5_in_two(const uint8_t *input, size_t size, size_t first) {
    cmpnt_md5_context context = started();
    MD5Update(&context, input, static_cast<uint32_t>(first));
    MD5Update(&context, input + first, static_cast<uint32_t>(size - first));
    return finish(&context);
}

std::string md5_of(const uint8_t *input, size_t size) { return md5_in_two(input, size, size); }

std::string md5_of(const std::string &text) {
    return md5_of(reinterpret_cast<const uint8_t *>(text.data()), text.size());
}

std::string other_md5_of(const uint8_t *input, size_t size) {
    uint8_t digest[md5_digest_size] = {};
    EXPECT_EQ(EVP_Digest(input, size, digest, nullptr, EVP_md5(), nullptr), 1);
    return as_text(digest);
}

uint64_t bits_of(const cmpnt_md5_context &context) {
    return static_cast<uint64_t>(context.count[1]) << 32 | context.count[0];
}

constexpr size_t short_lengths = 300;

}  // namespace

TEST(Md5, GivesThePublishedDigests) {
    EXPECT_EQ(md5_of(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(md5_of("a"), "0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(md5_of("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(md5_of("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(md5_of("abcdefghijklmnopqrstuvwxyz"), "c3fcd3d76192e4007dfb496cca67e13b");
    EXPECT_EQ(md5_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
              "d174ab98d277d9f5a5611c2c9f419d9f");
    EXPECT_EQ(md5_of("1234567890123456789012345678901234567890"
                     "1234567890123456789012345678901234567890"),
              "57edf4a22be3c955ac49da2e2107b67a");
}

TEST(Md5, AgreesForEveryShortLengthSplitAnywhere) {
    const Bytes input = random_bytes(short_lengths);
    for (size_t size = 0; size <= short_lengths; size++) {
        const std::string expected = other_md5_of(input.data(), size);
        for (size_t first = 0; first <= size; first++) {
            ASSERT_EQ(md5_in_two(input.data(), size, first), expected) << first << " of " << size;
        }
    }
}

TEST(Md5, AgreesForEveryShortLengthByteByByte) {
    const Bytes input = random_bytes(short_lengths);
    for (size_t size = 0; size <= short_lengths; size++) {
        cmpnt_md5_context context = started();
        for (size_t i = 0; i < size; i++) {
            MD5Update(&context, input.data() + i, 1);
        }
        ASSERT_EQ(finish(&context), other_md5_of(input.data(), size)) << size;
    }
}

TEST(Md5, AgreesForRandomLengthsInRandomPieces) {
    std::mt19937 random(1321);
    for (int round = 0; round < 24; round++) {
        const Bytes input = random_bytes(random() % 100000);
        cmpnt_md5_context context = started();
        for (size_t done = 0; done < input.size();) {
            const size_t piece = std::min<size_t>(random() % 5000, input.size() - done);
            MD5Update(&context, input.data() + done, static_cast<uint32_t>(piece));
            done += piece;
        }
        ASSERT_EQ(finish(&context), other_md5_of(input.data(), input.size())) << input.size();
    }
}

TEST(Md5, TakesInputAtAnyAddress) {
    const Bytes input = random_bytes(1000);
    const std::string expected = other_md5_of(input.data(), input.size());
    Bytes shifted(input.size() + 16);
    for (size_t shift = 0; shift < 16; shift++) {
        std::copy(input.begin(), input.end(), shifted.begin() + static_cast<long>(shift));
        EXPECT_EQ(md5_of(shifted.data() + shift, input.size()), expected) << shift;
    }
}

TEST(Md5, KeepsContextsApart) {
    cmpnt_md5_context one = started();
    cmpnt_md5_context other = started();
    const uint8_t text[] = {'a', 'b', 'c'};
    MD5Update(&one, text, 2);
    MD5Update(&other, text, 1);
    MD5Update(&one, text + 2, 1);
    EXPECT_EQ(finish(&one), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(finish(&other), "0cc175b9c0f1b6a831c399e269772661");
}

TEST(Md5, StartsWithThePublishedWords) {
    const cmpnt_md5_context context = started();
    EXPECT_EQ(bits_of(context), 0u);
    EXPECT_EQ(context.state[0], 0x67452301u);
    EXPECT_EQ(context.state[1], 0xefcdab89u);
    EXPECT_EQ(context.state[2], 0x98badcfeu);
    EXPECT_EQ(context.state[3], 0x10325476u);
}

TEST(Md5, HoldsBackWhatFillsNoBlock) {
    const Bytes input = random_bytes(130);
    cmpnt_md5_context context = started();
    MD5Update(&context, input.data(), 130);
    EXPECT_EQ(bits_of(context), 130u * 8);
    EXPECT_EQ(memcmp(context.buffer, input.data() + 128, 2), 0);
    EXPECT_NE(context.state[0], started().state[0]) << "whole blocks do not wait";
}

TEST(Md5, NoInputChangesNothing) {
    const uint8_t byte = 'x';
    cmpnt_md5_context context = started();
    MD5Update(&context, &byte, 1);
    const cmpnt_md5_context before = context;
    MD5Update(&context, &byte, 0);
    MD5Update(&context, nullptr, 0);
    EXPECT_EQ(memcmp(&context, &before, sizeof(context)), 0);
}

TEST(Md5, CountsBitsOverTheWordsBorder) {
    const uint8_t bytes[64] = {};
    cmpnt_md5_context context = started();
    context.count[0] = 0xFFFFFE00;
    MD5Update(&context, bytes, 63);
    EXPECT_EQ(bits_of(context), 0xFFFFFFF8u);
    MD5Update(&context, bytes, 1);
    EXPECT_EQ(bits_of(context), uint64_t{1} << 32);
}

TEST(Md5, CountsAnyLengthModulo64Bits) {
    for (uint64_t before : {uint64_t{0}, uint64_t{0xFFFFFE00}, ~uint64_t{0} - 0x1FF}) {
        for (uint32_t length : {1u, 0x1FFFFFFFu, 0x20000000u, 0x20000040u, 0xFFFFFFFFu}) {
            cmpnt_md5_context context = started();
            context.count[0] = static_cast<uint32_t>(before);
            context.count[1] = static_cast<uint32_t>(before >> 32);
            md5_count(&context, length);
            EXPECT_EQ(bits_of(context), before + uint64_t{length} * 8) << before << " " << length;
        }
    }
}

TEST(Md5, AgreesOnMessagesBeyond512Megabytes) {
    const Bytes input = random_bytes(short_lengths);
    MD5_CTX other;
    MD5_Init(&other);
    other.Nl = 0xFFFFFE00;
    other.Nh = 0x12345678;
    uint8_t expected[md5_digest_size];
    MD5_Update(&other, input.data(), input.size());
    MD5_Final(expected, &other);

    cmpnt_md5_context context = started();
    context.count[0] = 0xFFFFFE00;
    context.count[1] = 0x12345678;
    MD5Update(&context, input.data(), static_cast<uint32_t>(input.size()));
    EXPECT_EQ(finish(&context), as_text(expected));
}

// The words of the digest stay in the state, and the padding has been counted.
TEST(Md5, LeavesTheContextAsItIsInTheEnd) {
    const struct {
        size_t length;
        uint64_t bits;
    } cases[] = {{0, 512}, {3, 512}, {55, 512}, {56, 1024}, {63, 1024}, {64, 1024}, {119, 1024}};
    for (const auto &[length, bits] : cases) {
        const Bytes input(length, 'x');
        cmpnt_md5_context context = started();
        MD5Update(&context, input.data(), static_cast<uint32_t>(length));
        uint8_t digest[md5_digest_size];
        MD5Final(digest, &context);
        EXPECT_EQ(bits_of(context), bits) << length;
        for (size_t i = 0; i < 4; i++) {
            const uint8_t *word = digest + 4 * i;
            EXPECT_EQ(context.state[i], static_cast<uint32_t>(word[3]) << 24 | word[2] << 16 |
                                            word[1] << 8 | word[0]);
        }
    }
}

TEST(Md5, WritesSixteenBytesOfDigest) {
    uint8_t digest[md5_digest_size + 1];
    memset(digest, 0x5A, sizeof(digest));
    cmpnt_md5_context context = started();
    MD5Final(digest, &context);
    EXPECT_EQ(digest[md5_digest_size], 0x5A);
}

TEST(Md5, LeavesNullAlone) {
    const uint8_t byte = 'x';
    uint8_t digest[md5_digest_size] = {7};
    cmpnt_md5_context context = started();
    const cmpnt_md5_context before = context;
    MD5Init(nullptr);
    MD5Update(nullptr, &byte, 1);
    MD5Update(&context, nullptr, 1);
    MD5Final(nullptr, &context);
    MD5Final(digest, nullptr);
    EXPECT_EQ(memcmp(&context, &before, sizeof(context)), 0);
    EXPECT_EQ(digest[0], 7);
}
