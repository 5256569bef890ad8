/* Another library of the process has an MD5 of the same names, and comes first: a host that says
 * MD5Update gets the other's. Our digests of files are right all the same, and leave it alone.
 *
 * CMPNT_LIBRARY is the shared library's file, where the host has it as such. */
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

#include "tests/md5_collision_foreign.h"

/* The exported header declares the six names its own way, which cannot stand beside the other's. */
int32_t calculate_file_md5sum(const char *path, char *digest);
int32_t file_md5_check(const char *expected, const char *path);

static const char path[] = "/tmp/file";
static const char text[] = "abc";
static const char digest_text[] = "900150983cd24fb0d6963f7d28e17f72";

static int failures;

static void expect(int holds, const char *what) {
    if (!holds) {
        printf("does not hold: %s\n", what);
        failures++;
    }
}

static void write_text(void) {
    FILE *file = fopen(path, "we");
    expect(file != NULL && fputs(text, file) >= 0 && fclose(file) == 0, "the file is written");
}

static void digests_of_files_are_right(void) {
    char digest[33] = "";
    expect(calculate_file_md5sum(path, digest) == 0, "a digest can be had");
    expect(strcmp(digest, digest_text) == 0, "it is the file's");
    expect(file_md5_check(digest_text, path) == 0, "the check passes with it");
    expect(file_md5_check("5a5a5a5a5a5a5a5a5a5a5a5a5a5a5a5a", path) == -1,
           "the check fails with what the other would make");
    expect(foreign_md5_calls() == 0, "the other's functions are not called for it");
}

static void the_host_has_the_other_functions(void) {
    foreign_md5_context context = {{0}};
    unsigned char bytes[16] = {0};
    uint32_t words[4] = {0};
    MD5Init(&context);
    MD5Update(&context, text, sizeof(text));
    MD5Final(bytes, &context);
    MD5Transform(words, bytes);
    MD5Encode(bytes, words, sizeof(words));
    MD5Decode(words, bytes, sizeof(words));
    expect(foreign_md5_calls() == 6, "the other's functions are the host's");
}

#ifdef CMPNT_LIBRARY
typedef struct our_context {
    uint32_t words[6];
    unsigned char buffer[64];
} our_context;

/* A host that asks for ours by handle has them work together. */
static void our_names_lead_to_our_functions(void) {
    static const unsigned char expected[16] = {0x90, 0x01, 0x50, 0x98, 0x3c, 0xd2, 0x4f, 0xb0,
                                               0xd6, 0x96, 0x3f, 0x7d, 0x28, 0xe1, 0x7f, 0x72};
    void (*init)(our_context *);
    void (*update)(our_context *, const void *, uint32_t);
    void (*final)(unsigned char *, our_context *);
    const int calls = foreign_md5_calls();
    our_context context;
    unsigned char digest[16];
    void *library = dlopen(CMPNT_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
    expect(library != NULL, "the shared library is loaded");
    if (library == NULL) {
        return;
    }
    *(void **)&init = dlsym(library, "MD5Init");
    *(void **)&update = dlsym(library, "MD5Update");
    *(void **)&final = dlsym(library, "MD5Final");
    init(&context);
    update(&context, text, 3);
    final(digest, &context);
    expect(memcmp(digest, expected, sizeof(digest)) == 0, "our own functions are right");
    expect(foreign_md5_calls() == calls, "our own functions do not call the other's");
    dlclose(library);
}
#else
static void our_names_lead_to_our_functions(void) {}
#endif

int main(void) {
    write_text();
    digests_of_files_are_right();
    the_host_has_the_other_functions();
    our_names_lead_to_our_functions();
    return failures == 0 ? 0 : 1;
}
