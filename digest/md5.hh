// MD5 for the library's own use. Hosts and the libraries beside us may define the names that we export
// (MD5Update and the like) with contexts of their own, so nothing in here goes through those.
#ifndef CMPNT_DIGEST_MD5_HH
#define CMPNT_DIGEST_MD5_HH

#include "libcmpnt_db.h"

inline constexpr uint32_t md5_block_size = 64;
inline constexpr uint32_t md5_digest_size = 16;

void md5_start(cmpnt_md5_context *context);
void md5_add(cmpnt_md5_context *context, const uint8_t *input, uint32_t length);
void md5_finish(uint8_t digest[md5_digest_size], cmpnt_md5_context *context);

// Adds so many bytes to the context's count of bits.
void md5_count(cmpnt_md5_context *context, uint32_t length);

// Works the blocks, at any address, into the state.
void md5_blocks(uint32_t state[4], const uint8_t *blocks, uint32_t count);

#endif
