#include "tests/support/signing.hh"

#include <openssl/evp.h>
#include <openssl/pem.h>

#include <memory>

namespace {

struct FreeOpenssl {
    void operator()(BIO *bio) const { BIO_free(bio); }
    void operator()(EVP_PKEY *key) const { EVP_PKEY_free(key); }
    void operator()(EVP_MD_CTX *context) const { EVP_MD_CTX_free(context); }
};
template <typename Type>
using Owned = std::unique_ptr<Type, FreeOpenssl>;

std::string text_of(BIO *bio) {
    char *text = nullptr;
    const long size = BIO_get_mem_data(bio, &text);
    return size > 0 ? std::string(text, static_cast<size_t>(size)) : std::string();
}

}  // namespace

signing::KeyPair signing::make_key_pair(const std::string &curve) {
    const Owned<EVP_PKEY> key(curve == "SM2" ? EVP_PKEY_Q_keygen(nullptr, nullptr, "SM2")
                                             : EVP_EC_gen(curve.c_str()));
    const Owned<BIO> private_pem(BIO_new(BIO_s_mem()));
    const Owned<BIO> public_pem(BIO_new(BIO_s_mem()));
    PEM_write_bio_PrivateKey(private_pem.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    PEM_write_bio_PUBKEY(public_pem.get(), key.get());
    return {text_of(private_pem.get()), text_of(public_pem.get())};
}

std::string signing::sign(const std::string &data, const KeyPair &key, const std::string &id) {
    const Owned<BIO> pem(
        BIO_new_mem_buf(key.private_pem.data(), static_cast<int>(key.private_pem.size())));
    const Owned<EVP_PKEY> private_key(
        PEM_read_bio_PrivateKey(pem.get(), nullptr, nullptr, nullptr));
    const Owned<EVP_MD_CTX> context(EVP_MD_CTX_new());
    EVP_PKEY_CTX *settings = nullptr;  // the digest context's own
    if (EVP_DigestSignInit(context.get(), &settings, EVP_sm3(), nullptr, private_key.get()) != 1 ||
        (EVP_PKEY_is_a(private_key.get(), "SM2") == 1 &&
         EVP_PKEY_CTX_set1_id(settings, id.data(), static_cast<int>(id.size())) != 1)) {
        return "";
    }
    unsigned char signature[256];
    size_t size = sizeof(signature);
    const auto *bytes = reinterpret_cast<const unsigned char *>(data.data());
    if (EVP_DigestSign(context.get(), signature, &size, bytes, data.size()) != 1) {
        return "";
    }
    return std::string(reinterpret_cast<const char *>(signature), size);
}

std::string signing::sm3(const std::string &data) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    size_t size = sizeof(digest);
    if (EVP_Q_digest(nullptr, "SM3", nullptr, data.data(), data.size(), digest, &size) != 1) {
        return "";
    }
    std::string text;
    for (size_t i = 0; i < size; i++) {
        constexpr char digits[] = "0123456789abcdef";
        text += digits[digest[i] >> 4];
        text += digits[digest[i] & 15];
    }
    return text;
}
