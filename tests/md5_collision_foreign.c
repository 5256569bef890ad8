/* Functions of our names that do something else: whatever they are handed is scribbled over. */
#include "tests/md5_collision_foreign.h"

#include <string.h>

static int calls;

static void scribble(void *memory, size_t size) {
    calls++;
    memset(memory, 0x5A, size);
}

void MD5Init(foreign_md5_context *context) { scribble(context, sizeof(*context)); }

void MD5Update(foreign_md5_context *context, const void *input, size_t length) {
    (void)input;
    (void)length;
    scribble(context, sizeof(*context));
}

void MD5Final(unsigned char *digest, foreign_md5_context *context) {
    scribble(context, sizeof(*context));
    memset(digest, 0x5A, 16);
}

void MD5Transform(uint32_t *state, const unsigned char *block) {
    (void)block;
    scribble(state, 16);
}

void MD5Encode(unsigned char *output, uint32_t *input, size_t length) {
    (void)input;
    scribble(output, length);
}

void MD5Decode(uint32_t *output, const unsigned char *input, size_t length) {
    (void)input;
    scribble(output, length);
}

int foreign_md5_calls(void) { return calls; }
