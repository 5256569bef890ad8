#include <errno.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <vector>

#include "platform/reference/reference_platform.h"
#include "tests/support/deadline.hh"
#include "tests/support/device_test.hh"
#include "tests/support/signing.hh"

namespace {

const char *const abc_digest = "66c7f0f462eeedd9d1f2d46bdc10e4e24167c4875cf2f7a2297da02b8f4ba8e0";

int32_t verify(const std::string &directory, const std::string &name, const std::string &digest) {
    return do_verify_signature(directory.c_str(), name.c_str(), digest.c_str(),
                               static_cast<uint32_t>(digest.size()));
}

class Sm3DigestTest : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        write_file("/var/d/abc", "abc");
    }
};

TEST_F(Sm3DigestTest, EqualsThePublishedDigests) {
    write_file("/var/d/empty", "");
    std::string blocks;
    for (int i = 0; i < 16; i++) {
        blocks += "abcd";
    }
    write_file("/var/d/blocks", blocks);
    EXPECT_EQ(0, verify("/var/d", "abc", abc_digest));
    EXPECT_EQ(0, verify("/var/d", "blocks",
                        "debe9ff92275b8a138604889c18e5a4d6fdb70e5387e5765293dcba39c0c5732"));
    EXPECT_EQ(0, verify("/var/d", "empty",
                        "1ab21d8355cfa17f8e61194831e81a8f22bec8c728fefb747ed035eb5082aa2b"));
}

TEST_F(Sm3DigestTest, TakesTheNameAloneWithAnEmptyDirectory) {
    EXPECT_EQ(0, verify("", "/var/d/abc", abc_digest));
    EXPECT_EQ(0, do_verify_signature(nullptr, "/var/d/abc", abc_digest, 64));
    EXPECT_EQ(REFERENCE_PLATFORM_FILE_UNREADABLE, verify("", "abc", abc_digest));
    EXPECT_EQ(0, verify("/var", "d/abc", abc_digest));
}

TEST_F(Sm3DigestTest, TakesDigitsOfEitherCase) {
    std::string upper = abc_digest;
    for (char &digit : upper) {
        digit = static_cast<char>(toupper(static_cast<unsigned char>(digit)));
    }
    EXPECT_EQ(0, verify("/var/d", "abc", upper));
    EXPECT_EQ(0, verify("/var/d", "abc", upper.substr(0, 31) + (abc_digest + 31)));
}

TEST_F(Sm3DigestTest, SeesADifferenceInEveryDigit) {
    for (size_t i = 0; i < 64; i++) {
        std::string digest = abc_digest;
        digest[i] = digest[i] == '0' ? '1' : '0';
        EXPECT_EQ(REFERENCE_PLATFORM_DIGEST_DIFFERS, verify("/var/d", "abc", digest)) << i;
    }
}

TEST_F(Sm3DigestTest, RefusesAMalformedDigest) {
    const std::string good = abc_digest;
    const std::string with_nul = good.substr(0, 10) + std::string(1, '\0') + good.substr(11);
    for (const std::string &digest :
         {std::string(), good.substr(1), good + "0", good + good, "g" + good.substr(1),
          good.substr(0, 63) + " ", " " + good.substr(1), good.substr(0, 63) + "/",
          good.substr(0, 63) + "@", good.substr(0, 63) + "`", with_nul, std::string(64, '\xff')}) {
        EXPECT_EQ(REFERENCE_PLATFORM_DIGEST_MALFORMED, verify("/var/d", "abc", digest)) << digest;
    }
    EXPECT_EQ(REFERENCE_PLATFORM_DIGEST_MALFORMED,
              do_verify_signature("/var/d", "abc", nullptr, 64));
}

TEST_F(Sm3DigestTest, ReadsNoFurtherThanTheGivenLength) {
    std::vector<char> unterminated(abc_digest, abc_digest + 64);
    EXPECT_EQ(0, do_verify_signature("/var/d", "abc", unterminated.data(), 64));
    // A text that ends early is not read on, whatever the length says.
    std::vector<char> early = {'6', '6', '\0'};
    EXPECT_EQ(REFERENCE_PLATFORM_DIGEST_MALFORMED,
              do_verify_signature("/var/d", "abc", early.data(), 64));
}

TEST_F(Sm3DigestTest, TellsAnUnreadableFileFromADifferentOne) {
    const Deadline deadline;
    mkfifo("/var/d/pipe", 0600);
    make_directories("/var/d/folder");
    ASSERT_EQ(0, symlink("nowhere", "/var/d/dangling"));
    for (const char *name : {"missing", "pipe", "folder", "dangling", ""}) {
        EXPECT_EQ(REFERENCE_PLATFORM_FILE_UNREADABLE, verify("/var/d", name, abc_digest)) << name;
    }
    EXPECT_EQ(REFERENCE_PLATFORM_FILE_UNREADABLE,
              do_verify_signature("/var/d", nullptr, abc_digest, 64));
}

TEST_F(Sm3DigestTest, FollowsALink) {
    ASSERT_EQ(0, symlink("abc", "/var/d/link"));
    EXPECT_EQ(0, verify("/var/d", "link", abc_digest));
}

TEST_F(Sm3DigestTest, ReadsBigFilesPieceByPiece) {
    std::string data;
    for (int i = 0; i < 100000; i++) {
        data += static_cast<char>(i * 7 + i / 256);
    }
    write_file("/var/d/big", data);
    EXPECT_EQ(0, verify("/var/d", "big", signing::sm3(data)));
    for (const size_t size : {16383u, 16384u, 16385u}) {
        write_file("/var/d/big", data.substr(0, size));
        EXPECT_EQ(0, verify("/var/d", "big", signing::sm3(data.substr(0, size)))) << size;
    }
}

TEST_F(Sm3DigestTest, GoesOnAfterAnInterruptionAndAShortRead) {
    fault::fail("read", 1, EINTR, 2);
    EXPECT_EQ(0, verify("/var/d", "abc", abc_digest));
    fault::limit("read", 1, 1);
    EXPECT_EQ(0, verify("/var/d", "abc", abc_digest));
}

TEST_F(Sm3DigestTest, CountsAReadThatFailsAsUnreadable) {
    fault::fail("read", 1, EIO);
    EXPECT_EQ(REFERENCE_PLATFORM_FILE_UNREADABLE, verify("/var/d", "abc", abc_digest));
    fault::reset();
    fault::fail("read", 2, EIO);  // with the whole digest already fed
    EXPECT_EQ(REFERENCE_PLATFORM_FILE_UNREADABLE, verify("/var/d", "abc", abc_digest));
}

TEST_F(Sm3DigestTest, LeavesNoFileOpen) {
    const int before = open_descriptors();
    verify("/var/d", "abc", abc_digest);
    verify("/var", "d", abc_digest);
    verify("/var/d", "missing", abc_digest);
    EXPECT_EQ(before, open_descriptors());
}

TEST_F(Sm3DigestTest, AgreesWithTheOpensslCommand) {
    ASSERT_EQ(0, system("openssl dgst -sm3 -r /var/d/abc >/var/d/digest"));
    EXPECT_EQ(0, verify("/var/d", "abc", read_file("/var/d/digest").substr(0, 64)));
}

}  // namespace
