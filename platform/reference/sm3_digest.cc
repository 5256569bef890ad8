// SM3 digests of files against the ones that are expected.
#include <openssl/evp.h>
#include <string.h>

#include <memory>

#include "platform/reference/reference_platform.h"
#include "platform/reference/regular_file.hh"

namespace {

constexpr size_t sm3_size = 32;

struct FreeDigest {
    void operator()(EVP_MD_CTX *context) const { EVP_MD_CTX_free(context); }
};

bool digest_file(const std::string &path, unsigned char (&digest)[sm3_size]) {
    reference::RegularFile file(path.c_str());
    const std::unique_ptr<EVP_MD_CTX, FreeDigest> context(EVP_MD_CTX_new());
    return context != nullptr && EVP_DigestInit_ex(context.get(), EVP_sm3(), nullptr) == 1 &&
           file.read_blocks([&](const char *block, size_t size) {
               return EVP_DigestUpdate(context.get(), block, size) == 1;
           }) &&
           EVP_DigestFinal_ex(context.get(), digest, nullptr) == 1;
}

int value_of(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    if (digit >= 'a' && digit <= 'f') {
        return digit - 'a' + 10;
    }
    return digit >= 'A' && digit <= 'F' ? digit - 'A' + 10 : -1;
}

bool read_digest(const char *text, uint32_t length, unsigned char (&digest)[sm3_size]) {
    if (text == nullptr || length != 2 * sm3_size) {
        return false;
    }
    for (size_t i = 0; i < sm3_size; i++) {
        const int high = value_of(text[2 * i]);
        const int low = high < 0 ? -1 : value_of(text[2 * i + 1]);
        if (low < 0) {
            return false;
        }
        digest[i] = static_cast<unsigned char>(high * 16 + low);
    }
    return true;
}

}  // namespace

int32_t do_verify_signature(const char *directory, const char *file_name, const char *digest,
                            uint32_t digest_length) {
    unsigned char expected[sm3_size];
    unsigned char found[sm3_size];
    if (!read_digest(digest, digest_length, expected)) {
        return REFERENCE_PLATFORM_DIGEST_MALFORMED;
    }
    if (file_name == nullptr) {
        return REFERENCE_PLATFORM_FILE_UNREADABLE;
    }
    std::string path = directory == nullptr ? "" : directory;
    path += path.empty() ? "" : "/";
    if (!digest_file(path + file_name, found)) {
        return REFERENCE_PLATFORM_FILE_UNREADABLE;
    }
    return memcmp(expected, found, sm3_size) == 0 ? 0 : REFERENCE_PLATFORM_DIGEST_DIFFERS;
}
