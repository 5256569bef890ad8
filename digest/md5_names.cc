// MD5 as hosts know it. In a file of its own, which the linker leaves in the static archive when a
// host has functions of these names itself.
#include "digest/little_endian.hh"
#include "digest/md5.hh"

void MD5Init(cmpnt_md5_context *context) {
    if (context != nullptr) {
        md5_start(context);
    }
}

void MD5Update(cmpnt_md5_context *context, const uint8_t *input, uint32_t length) {
    if (context != nullptr && input != nullptr) {
        md5_add(context, input, length);
    }
}

void MD5Final(uint8_t digest[md5_digest_size], cmpnt_md5_context *context) {
    if (digest != nullptr && context != nullptr) {
        md5_finish(digest, context);
    }
}

void MD5Transform(uint32_t state[4], const uint8_t block[md5_block_size]) {
    if (state != nullptr && block != nullptr) {
        md5_blocks(state, block, 1);
    }
}

void MD5Encode(uint8_t *output, const uint32_t *input, uint32_t length) {
    if (output == nullptr || input == nullptr) {
        return;
    }
    for (uint32_t i = 0; i < length / 4; i++) {
        store_little_endian(output + 4 * i, input[i]);
    }
}

void MD5Decode(uint32_t *output, const uint8_t *input, uint32_t length) {
    if (output == nullptr || input == nullptr) {
        return;
    }
    for (uint32_t i = 0; i < length / 4; i++) {
        output[i] = load_little_endian(input + 4 * i);
    }
}
