// Words as bytes, the low byte first, at any address and on any machine.
#ifndef CMPNT_DIGEST_LITTLE_ENDIAN_HH
#define CMPNT_DIGEST_LITTLE_ENDIAN_HH

#include <stdint.h>
#include <string.h>

inline uint32_t little_endian_word(uint32_t word) {
#if __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    return __builtin_bswap32(word);
#else
    return word;
#endif
}

inline uint32_t load_little_endian(const uint8_t *bytes) {
    uint32_t word;
    memcpy(&word, bytes, sizeof(word));
    return little_endian_word(word);
}

inline void store_little_endian(uint8_t *bytes, uint32_t word) {
    word = little_endian_word(word);
    memcpy(bytes, &word, sizeof(word));
}

#endif
