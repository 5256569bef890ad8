// Bits of a word.
#include "libcmpnt_db.h"

void cmpnt_clear_bit(uint32_t *word, uint32_t mask) {
    if (word != nullptr) {
        *word &= ~mask;
    }
}

void cmpnt_set_bit(uint32_t *word, uint32_t mask) {
    if (word != nullptr) {
        *word |= mask;
    }
}

int32_t cmpnt_bit_is_change(uint32_t value, uint32_t mask) {
    return (value & mask) != mask ? 1 : 0;
}
