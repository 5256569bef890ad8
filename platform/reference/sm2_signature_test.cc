#include <errno.h>
#include <openssl/err.h>
#include <stdlib.h>
#include <sys/stat.h>

#include "platform/reference/reference_platform.h"
#include "tests/support/deadline.hh"
#include "tests/support/device_test.hh"
#include "tests/support/signing.hh"

namespace {

const std::string data_file = "/var/s/list";
const std::string signature_file = "/var/s/list.sign";
const std::string public_key = "/var/s/public.pem";
const std::string private_key = "/var/s/private.pem";
const std::string text = "a list of digests\n";

class Sm2SignatureTest : public DeviceTest {
protected:
    static void SetUpTestSuite() {
        key_ = signing::make_key_pair();
        other_key_ = signing::make_key_pair();
    }
    void SetUp() override {
        DeviceTest::SetUp();
        write_file(data_file, text);
        write_file(signature_file, signing::sign(text, key_));
        write_file(public_key, key_.public_pem);
        write_file(private_key, key_.private_pem);
        reference_platform_set_signer_id(nullptr);
    }

    static int32_t verify() {
        return safe_verify_file_signature_with_id(data_file.c_str(), signature_file.c_str(),
                                                  public_key.c_str());
    }
    // As a person would do it, with the openssl command.
    static bool openssl(const std::string &arguments) {
        const std::string command = "openssl pkeyutl -rawin -digest sm3 -in " + data_file + " " +
                                    arguments + " >/dev/null 2>/tmp/openssl.log";
        return system(command.c_str()) == 0;
    }
    static bool openssl_signs(const std::string &id) {
        return openssl("-sign -inkey " + private_key + " -pkeyopt distid:" + id + " -out " +
                       signature_file);
    }
    static bool openssl_verifies(const std::string &id) {
        return openssl("-verify -pubin -inkey " + public_key + " -pkeyopt distid:" + id +
                       " -sigfile " + signature_file);
    }

    static signing::KeyPair key_;
    static signing::KeyPair other_key_;
};

signing::KeyPair Sm2SignatureTest::key_;
signing::KeyPair Sm2SignatureTest::other_key_;

TEST_F(Sm2SignatureTest, HoldsOverTheFileThatWasSigned) { EXPECT_NE(0, verify()); }

TEST_F(Sm2SignatureTest, TakesSignaturesOfTheOpensslCommand) {
    ASSERT_TRUE(openssl_signs("1234567812345678")) << read_file("/tmp/openssl.log");
    EXPECT_NE(0, verify());
    ASSERT_TRUE(openssl_signs("1234567812345679"));
    EXPECT_EQ(0, verify());
}

TEST_F(Sm2SignatureTest, TakesKeysOfTheOpensslCommand) {
    const std::string make_keys = "openssl genpkey -algorithm SM2 -out " + private_key +
                                  " && openssl pkey -pubout -in " + private_key + " -out " +
                                  public_key;
    ASSERT_EQ(0, system(make_keys.c_str()));
    EXPECT_EQ(0, verify());
    ASSERT_TRUE(openssl_signs("1234567812345678"));
    EXPECT_NE(0, verify());
}

TEST_F(Sm2SignatureTest, IsTakenByTheOpensslCommand) {
    EXPECT_TRUE(openssl_verifies("1234567812345678")) << read_file("/tmp/openssl.log");
    EXPECT_FALSE(openssl_verifies("another"));
    write_file(signature_file, signing::sign(text, key_, "another"));
    EXPECT_TRUE(openssl_verifies("another")) << read_file("/tmp/openssl.log");
}

TEST_F(Sm2SignatureTest, HoldsOnlyWithTheSignersIdentifier) {
    reference_platform_set_signer_id("vendor@example.org");
    EXPECT_EQ(0, verify());
    write_file(signature_file, signing::sign(text, key_, "vendor@example.org"));
    EXPECT_NE(0, verify());
    reference_platform_set_signer_id("vendor@example.or");
    EXPECT_EQ(0, verify());
    reference_platform_set_signer_id(nullptr);
    EXPECT_EQ(0, verify());
    write_file(signature_file, signing::sign(text, key_, "1234567812345678"));
    EXPECT_NE(0, verify());
}

TEST_F(Sm2SignatureTest, CopiesTheIdentifier) {
    char id[] = "1234567812345678";
    reference_platform_set_signer_id(id);
    id[0] = 'x';
    EXPECT_NE(0, verify());
}

TEST_F(Sm2SignatureTest, FailsWithAnIdentifierThatIsTooLongToBeSigned) {
    reference_platform_set_signer_id(std::string(8190, 'i').c_str());
    write_file(signature_file, signing::sign(text, key_, std::string(8190, 'i')));
    EXPECT_NE(0, verify());
    reference_platform_set_signer_id(std::string(8191, 'i').c_str());
    EXPECT_EQ(0, verify());
}

TEST_F(Sm2SignatureTest, FailsWithAnotherKey) {
    write_file(public_key, other_key_.public_pem);
    EXPECT_EQ(0, verify());
}

TEST_F(Sm2SignatureTest, FailsOverOtherData) {
    for (const std::string &other :
         {std::string(), text + "\n", text.substr(1), "A" + text.substr(1)}) {
        write_file(data_file, other);
        EXPECT_EQ(0, verify()) << other;
    }
}

TEST_F(Sm2SignatureTest, FailsWithADamagedSignature) {
    const std::string good = signing::sign(text, key_);
    for (const std::string &bad :
         {std::string(), good.substr(0, 1), good.substr(0, good.size() / 2),
          good.substr(0, good.size() - 1), good.substr(1), good + '\0', good + "\n", good + good,
          std::string(64, '\0'), std::string("\x30\x06\x02\x01\x00\x02\x01\x00", 8),
          "\x30\x84\xff\xff\xff\xff" + good, std::string(100000, 'x')}) {
        write_file(signature_file, bad);
        EXPECT_EQ(0, verify()) << testing::PrintToString(bad.substr(0, 100));
    }
    for (size_t i = 0; i < good.size(); i += 3) {
        std::string changed = good;
        changed[i] = static_cast<char>(changed[i] ^ 0x40);
        write_file(signature_file, changed);
        EXPECT_EQ(0, verify()) << i;
    }
    write_file(signature_file, good);
    EXPECT_NE(0, verify());
}

TEST_F(Sm2SignatureTest, RefusesKeysOfAnotherCurve) {
    const signing::KeyPair p256 = signing::make_key_pair("P-256");
    const std::string signature = signing::sign(text, p256);
    ASSERT_FALSE(signature.empty());
    write_file(signature_file, signature);
    write_file(public_key, p256.public_pem);
    // It is good in its own way.
    EXPECT_TRUE(openssl("-verify -pubin -inkey " + public_key + " -sigfile " + signature_file))
        << read_file("/tmp/openssl.log");
    EXPECT_EQ(0, verify());
}

TEST_F(Sm2SignatureTest, RefusesWhatIsNoPublicKey) {
    const std::string good = key_.public_pem;
    const std::string rsa =
        "openssl genrsa 1024 2>/dev/null | openssl rsa -pubout -out /var/s/rsa.pem 2>/dev/null";
    ASSERT_EQ(0, system(rsa.c_str()));
    for (const std::string &pem :
         {std::string(), std::string("no key\n"), good.substr(0, good.size() / 2), key_.private_pem,
          read_file("/var/s/rsa.pem"), std::string(100000, '\n') + good}) {
        write_file(public_key, pem);
        EXPECT_EQ(0, verify()) << pem.substr(0, 200);
    }
    write_file(public_key, "a comment in front\n" + good);
    EXPECT_NE(0, verify());
}

TEST_F(Sm2SignatureTest, FailsWithoutOneOfTheFiles) {
    const Deadline deadline;
    for (const std::string &file : {data_file, signature_file, public_key}) {
        const std::string contents = read_file(file);
        remove_tree(file);
        EXPECT_EQ(0, verify()) << file << " is missing";
        make_directories(file);
        EXPECT_EQ(0, verify()) << file << " is a directory";
        remove_tree(file);
        mkfifo(file.c_str(), 0600);
        EXPECT_EQ(0, verify()) << file << " is a pipe";
        remove_tree(file);
        write_file(file, contents);
    }
    EXPECT_NE(0, verify());
}

TEST_F(Sm2SignatureTest, FailsWithoutAPath) {
    const char *const data = data_file.c_str();
    const char *const signature = signature_file.c_str();
    const char *const key = public_key.c_str();
    EXPECT_EQ(0, safe_verify_file_signature_with_id(nullptr, signature, key));
    EXPECT_EQ(0, safe_verify_file_signature_with_id(data, nullptr, key));
    EXPECT_EQ(0, safe_verify_file_signature_with_id(data, signature, nullptr));
    EXPECT_EQ(0, safe_verify_file_signature_with_id("", "", ""));
}

TEST_F(Sm2SignatureTest, FailsWhenAReadFails) {
    for (int call = 1; call <= 6; call++) {  // each file is read until its end
        fault::reset();
        fault::fail("read", call, EIO);
        EXPECT_EQ(0, verify()) << call;
    }
    fault::reset();
    fault::fail("read", 1, EINTR);
    EXPECT_NE(0, verify());
    EXPECT_EQ(7, fault::calls("read"));
}

TEST_F(Sm2SignatureTest, HoldsOverEmptyAndBigFiles) {
    for (const size_t size : {size_t(0), size_t(16384), size_t(300001)}) {
        std::string data(size, 'd');
        write_file(data_file, data);
        write_file(signature_file, signing::sign(data, key_));
        EXPECT_NE(0, verify()) << size;
        data.resize(size + 1, 'd');
        write_file(data_file, data);
        EXPECT_EQ(0, verify()) << size;
    }
}

TEST_F(Sm2SignatureTest, LeavesTheHostsOpensslErrorsAlone) {
    ERR_clear_error();
    write_file(signature_file, "bad");
    EXPECT_EQ(0, verify());
    write_file(public_key, "bad");
    EXPECT_EQ(0, verify());
    EXPECT_EQ(0u, ERR_peek_error());
    ERR_raise(ERR_LIB_USER, 1);
    const unsigned long of_the_host = ERR_peek_last_error();
    EXPECT_EQ(0, verify());
    EXPECT_EQ(of_the_host, ERR_peek_last_error());
    ERR_clear_error();
}

TEST_F(Sm2SignatureTest, LeavesNoFileOpen) {
    const int before = open_descriptors();
    EXPECT_NE(0, verify());
    remove_tree(data_file);
    EXPECT_EQ(0, verify());
    EXPECT_EQ(before, open_descriptors());
}

}  // namespace
