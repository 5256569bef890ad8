// What tests of the verification list, and what the platform was asked.
#ifndef CMPNT_TESTS_VERIFICATION_HH
#define CMPNT_TESTS_VERIFICATION_HH

#include <string.h>

#include <string>
#include <vector>

#include "libcmpnt_db.h"
#include "tests/support/platform_recorder.hh"

constexpr char scratch[] = "/var/cache/opkg/cmpnt_safe_verify/safe_data_tmp";
constexpr char public_key[] = "/var/safe-verify/key/korvel_sm2_public.pem";

inline void list_hash(const std::string &name, const std::string &hash_value) {
    cmpnt_add_hash_verify_list(strdup(name.c_str()), strdup(hash_value.c_str()));
}

// "NAME DIGEST" of each node.
inline std::vector<std::string> listed_hashes() {
    std::vector<std::string> hashes;
    for (cmpnt_list_head *link = hash_verify_list.next; link != &hash_verify_list;
         link = link->next) {
        const hash_verify_list_t *node = CMPNT_HASH_NODE(link);
        hashes.push_back(std::string(node->name) + " " + node->hash_value);
    }
    return hashes;
}

// "DIRECTORY|NAME|DIGEST|LENGTH" of each file whose digest was asked for.
inline std::vector<std::string> digests_asked() {
    std::vector<std::string> asked;
    for (const DigestQuestion &question : platform.digest_questions) {
        asked.push_back(question.directory + "|" + question.file_name + "|" + question.digest +
                        "|" + std::to_string(question.length));
    }
    return asked;
}

// "FILE SIGNATURE KEY" of each signature that was asked for.
inline std::vector<std::string> signatures_asked() {
    std::vector<std::string> asked;
    for (const SignatureQuestion &question : platform.signature_questions) {
        asked.push_back(question.data_file + " " + question.signature_file + " " +
                        question.public_key_file);
    }
    return asked;
}

#endif
