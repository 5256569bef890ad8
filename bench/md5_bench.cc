// MD5 beside that of OpenSSL: in memory, and for a file that lies in the page cache, read in pieces of
// the same size by both.
#include <fcntl.h>
#include <openssl/evp.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <vector>

#include "bench/pair.hh"
#include "libcmpnt_db.h"

namespace {

constexpr size_t memory_size = 64 * 1024;
constexpr char path[] = "/tmp/md5_bench";
constexpr size_t file_size = size_t{256} << 20;
constexpr int file_repetitions = 15;
constexpr size_t chunk_size = 1024;
constexpr size_t digest_size = 16;

std::vector<uint8_t> some_bytes(size_t size) {
    std::vector<uint8_t> bytes(size);
    for (size_t i = 0; i < size; i++) {
        bytes[i] = static_cast<uint8_t>(i * 167 >> 3);
    }
    return bytes;
}

void update(benchmark::State &state) {
    const std::vector<uint8_t> bytes = some_bytes(memory_size);
    cmpnt_md5_context context;
    MD5Init(&context);
    for (auto _ : state) {
        MD5Update(&context, bytes.data(), memory_size);
        benchmark::DoNotOptimize(context);
    }
}

void update_openssl(benchmark::State &state) {
    const std::vector<uint8_t> bytes = some_bytes(memory_size);
    EVP_MD_CTX *context = EVP_MD_CTX_new();
    EVP_DigestInit_ex(context, EVP_md5(), nullptr);
    for (auto _ : state) {
        EVP_DigestUpdate(context, bytes.data(), memory_size);
    }
    EVP_MD_CTX_free(context);
}

// Written once, by the side that comes first, and gone with the sandbox.
bool file_is_there() {
    static const bool there = [] {
        const std::vector<uint8_t> bytes = some_bytes(file_size);
        const int fd = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        size_t done = 0;
        while (done < file_size) {
            const ssize_t written = write(fd, bytes.data() + done, file_size - done);
            if (written <= 0) {
                break;
            }
            done += static_cast<size_t>(written);
        }
        close(fd);
        return done == file_size;
    }();
    return there;
}

void sum_file(char *text) { calculate_file_md5sum(path, text); }

void sum_file_openssl(char *text) {
    uint8_t chunk[chunk_size];
    uint8_t digest[digest_size] = {};
    ssize_t length;
    EVP_MD_CTX *context = EVP_MD_CTX_new();
    EVP_DigestInit_ex(context, EVP_md5(), nullptr);
    const int fd = open(path, O_RDONLY | O_CLOEXEC);
    while ((length = read(fd, chunk, sizeof(chunk))) > 0) {
        EVP_DigestUpdate(context, chunk, static_cast<size_t>(length));
    }
    close(fd);
    EVP_DigestFinal_ex(context, digest, nullptr);
    EVP_MD_CTX_free(context);
    for (size_t i = 0; i < digest_size; i++) {
        snprintf(text + 2 * i, 3, "%02x", digest[i]);
    }
}

template <void (*sum)(char *text)>
void sum_files(benchmark::State &state) {
    char text[2 * digest_size + 1] = "";
    if (!file_is_there()) {
        state.SkipWithError("the file cannot be written");
    }
    for (auto _ : state) {
        sum(text);
        benchmark::DoNotOptimize(text);
    }
}

const bool added = add_pair("MD5 of 64 KiB", 1.03, update, update_openssl) &&
                   add_pair("MD5 of a file of 256 MiB", 1.02, sum_files<sum_file>,
                            sum_files<sum_file_openssl>, 0, BenchClock::thread, file_repetitions);

}  // namespace
