// The MD5 digest of input that comes in pieces.
#include "digest/md5.hh"

#include <string.h>

#include "digest/little_endian.hh"

namespace {

constexpr uint32_t length_size = 8;  // of the bit count that ends the message

uint32_t held_bytes(const cmpnt_md5_context *context) {
    return (context->count[0] >> 3) % md5_block_size;
}

}  // namespace

void md5_start(cmpnt_md5_context *context) {
    context->count[0] = 0;
    context->count[1] = 0;
    context->state[0] = 0x67452301;
    context->state[1] = 0xefcdab89;
    context->state[2] = 0x98badcfe;
    context->state[3] = 0x10325476;
}

void md5_count(cmpnt_md5_context *context, uint32_t length) {
    const uint32_t low_bits = length << 3;
    context->count[0] += low_bits;
    if (context->count[0] < low_bits) {
        context->count[1]++;
    }
    context->count[1] += length >> 29;
}

void md5_add(cmpnt_md5_context *context, const uint8_t *input, uint32_t length) {
    const uint32_t held = held_bytes(context);
    const uint32_t room = md5_block_size - held;
    md5_count(context, length);
    if (length < room) {
        memcpy(context->buffer + held, input, length);
        return;
    }
    if (held != 0) {
        memcpy(context->buffer + held, input, room);
        md5_blocks(context->state, context->buffer, 1);
        input += room;
        length -= room;
    }
    const uint32_t rest = length % md5_block_size;
    md5_blocks(context->state, input, length / md5_block_size);
    memcpy(context->buffer, input + (length - rest), rest);
}

// A one bit, zeros up to the end of a block but for the length, and the length.
void md5_finish(uint8_t digest[md5_digest_size], cmpnt_md5_context *context) {
    constexpr uint32_t padded_size = md5_block_size - length_size;
    static constexpr uint8_t padding[md5_block_size] = {0x80};
    uint8_t length[length_size];
    store_little_endian(length, context->count[0]);
    store_little_endian(length + 4, context->count[1]);

    const uint32_t held = held_bytes(context);
    md5_add(context, padding, (held < padded_size ? 0 : md5_block_size) + padded_size - held);
    md5_add(context, length, length_size);
    for (uint32_t i = 0; i < md5_digest_size / 4; i++) {
        store_little_endian(digest + 4 * i, context->state[i]);
    }
}
