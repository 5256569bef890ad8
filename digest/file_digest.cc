// The MD5 digest of a file as text, and the comparison with the text recorded for it.
#include <fcntl.h>
#include <string.h>
#include <unistd.h>

#include "common/log.hh"
#include "digest/md5.hh"

namespace {

constexpr char summer[] = "calculate_file_md5sum";  // whose steps these are
constexpr size_t chunk_size = 1024;
constexpr size_t text_size = 2 * md5_digest_size + 1;

// A short read ends the file, and so does a failed one: the digest is that of what came so far.
void add_content(cmpnt_md5_context *context, int fd, const char *path) {
    uint8_t chunk[chunk_size] = {};
    ssize_t length;
    do {
        length = read(fd, chunk, sizeof(chunk));
        if (length < 0) {
            CMPNT_LOG_AS(log_server_error, summer, "read %s fail, ret(%d), errno(%d).\n", path,
                         static_cast<int>(length), errno);
            return;
        }
        md5_add(context, chunk, static_cast<uint32_t>(length));
    } while (length == static_cast<ssize_t>(chunk_size));
}

void write_text(char *text, const uint8_t *digest) {
    constexpr char digits[] = "0123456789abcdef";
    for (size_t i = 0; i < md5_digest_size; i++) {
        text[2 * i] = digits[digest[i] >> 4];
        text[2 * i + 1] = digits[digest[i] & 0xF];
    }
    text[text_size - 1] = '\0';
}

}  // namespace

int32_t calculate_file_md5sum(const char *path, char *digest) {
    if (path == nullptr || digest == nullptr) {
        CMPNT_LOG(log_server_error, "param is null.\n");
        return -1;
    }
    const int fd = open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        CMPNT_LOG(log_server_error, "open %s fail\n", path);
        return -1;
    }
    cmpnt_md5_context context;
    md5_start(&context);
    add_content(&context, fd, path);
    cmpnt_close(fd);

    uint8_t bytes[md5_digest_size];
    md5_finish(bytes, &context);
    write_text(digest, bytes);
    return 0;
}

int32_t file_md5_check(const char *expected, const char *path) {
    if (expected == nullptr || path == nullptr) {
        CMPNT_LOG(log_server_error, "param err, target_md5=%p, path_name=%p .\n",
                  static_cast<const void *>(expected), static_cast<const void *>(path));
        return -1;
    }
    if (access(path, F_OK) != 0) {
        CMPNT_LOG(log_server_error, "the file(%s) not exist.\n", path);
        return -1;
    }
    char calculated[text_size];
    if (calculate_file_md5sum(path, calculated) != 0) {
        CMPNT_LOG(log_server_error, "calculate md5sum %s fail.\n", path);
        return -1;
    }
    if (strcmp(calculated, expected) != 0) {
        CMPNT_LOG(log_server_error, "path_name(%s) md5 different, target_md5(%s), cal_md5(%s).\n",
                  path, expected, calculated);
        return -1;
    }
    return 0;
}
