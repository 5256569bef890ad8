// SM2 signatures of files, over SM3 and the signer's identifier.
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>

#include <memory>

#include "platform/reference/reference_platform.h"
#include "platform/reference/regular_file.hh"

namespace {

using reference::RegularFile;

constexpr char default_signer_id[] = "1234567812345678";
// Far more than a key or a signature takes.
constexpr size_t small_file_limit = 65536;

std::string &signer_id() {
    static std::string the_id = default_signer_id;
    return the_id;
}

struct FreeOpenssl {
    void operator()(BIO *bio) const { BIO_free(bio); }
    void operator()(EVP_PKEY *key) const { EVP_PKEY_free(key); }
    void operator()(EVP_MD_CTX *context) const { EVP_MD_CTX_free(context); }
};
template <typename Type>
using Owned = std::unique_ptr<Type, FreeOpenssl>;

// The host may use OpenSSL itself: what goes wrong here shall not turn up among its own errors.
class OwnErrors {
public:
    OwnErrors() { ERR_set_mark(); }
    ~OwnErrors() { ERR_pop_to_mark(); }
    OwnErrors(const OwnErrors &) = delete;
    OwnErrors &operator=(const OwnErrors &) = delete;
};

// Null for anything but a public key on the SM2 curve.
Owned<EVP_PKEY> read_public_key(const char *path) {
    std::string pem;
    if (!RegularFile(path).read_all(pem, small_file_limit)) {
        return nullptr;
    }
    const Owned<BIO> bio(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
    Owned<EVP_PKEY> key(bio == nullptr ? nullptr
                                       : PEM_read_bio_PUBKEY(bio.get(), nullptr, nullptr, nullptr));
    return key != nullptr && EVP_PKEY_is_a(key.get(), "SM2") == 1 ? std::move(key) : nullptr;
}

bool start(EVP_MD_CTX *context, EVP_PKEY *key) {
    EVP_PKEY_CTX *settings = nullptr;  // the digest context's own
    const std::string &id = signer_id();
    return EVP_DigestVerifyInit(context, &settings, EVP_sm3(), nullptr, key) == 1 &&
           EVP_PKEY_CTX_set1_id(settings, id.data(), static_cast<int>(id.size())) == 1;
}

bool signature_holds(const char *data_file, const std::string &signature, EVP_PKEY *key) {
    const Owned<EVP_MD_CTX> context(EVP_MD_CTX_new());
    RegularFile data(data_file);
    return context != nullptr && start(context.get(), key) &&
           data.read_blocks([&](const char *block, size_t size) {
               return EVP_DigestVerifyUpdate(context.get(), block, size) == 1;
           }) &&
           EVP_DigestVerifyFinal(context.get(),
                                 reinterpret_cast<const unsigned char *>(signature.data()),
                                 signature.size()) == 1;
}

}  // namespace

void reference_platform_set_signer_id(const char *id) {
    signer_id() = id == nullptr ? default_signer_id : id;
}

int32_t safe_verify_file_signature_with_id(const char *data_file, const char *signature_file,
                                           const char *public_key_file) {
    if (data_file == nullptr || signature_file == nullptr || public_key_file == nullptr) {
        return 0;
    }
    const OwnErrors own_errors;
    std::string signature;
    const Owned<EVP_PKEY> key = read_public_key(public_key_file);
    if (key == nullptr || !RegularFile(signature_file).read_all(signature, small_file_limit)) {
        return 0;
    }
    return signature_holds(data_file, signature, key.get()) ? 1 : 0;
}
