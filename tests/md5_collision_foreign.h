/* Somebody else's MD5 of the same names: the names alone, for its context is another. Also counts its
 * calls. */
#ifndef CMPNT_TESTS_MD5_COLLISION_FOREIGN_H
#define CMPNT_TESTS_MD5_COLLISION_FOREIGN_H

#include <stddef.h>
#include <stdint.h>

#define FOREIGN_API __attribute__((visibility("default")))

#ifdef __cplusplus
extern "C" {
#endif

/* Larger than ours by far, so that whoever hands it ours has its stack overwritten. */
typedef struct foreign_md5_context {
    uint64_t marks[64];
} foreign_md5_context;

FOREIGN_API void MD5Init(foreign_md5_context *context);
FOREIGN_API void MD5Update(foreign_md5_context *context, const void *input, size_t length);
FOREIGN_API void MD5Final(unsigned char *digest, foreign_md5_context *context);
FOREIGN_API void MD5Transform(uint32_t *state, const unsigned char *block);
FOREIGN_API void MD5Encode(unsigned char *output, uint32_t *input, size_t length);
FOREIGN_API void MD5Decode(uint32_t *output, const unsigned char *input, size_t length);

FOREIGN_API int foreign_md5_calls(void);

#ifdef __cplusplus
}
#endif

#endif
