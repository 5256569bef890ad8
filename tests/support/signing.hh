// Signed files for tests: SM2 keys and signatures, SM3 digests. Nothing here looks at a failure but by
// leaving its file or text empty.
#ifndef CMPNT_TESTS_SIGNING_HH
#define CMPNT_TESTS_SIGNING_HH

#include <string>

namespace signing {

struct KeyPair {
    std::string private_pem;
    std::string public_pem;
};

// A new pair on the curve: "SM2", or another's name for keys that are to be refused ("P-256").
KeyPair make_key_pair(const std::string &curve = "SM2");

// The signature in DER. An identifier goes with SM2 keys only.
std::string sign(const std::string &data, const KeyPair &key,
                 const std::string &id = "1234567812345678");

// In lower-case hexadecimal digits.
std::string sm3(const std::string &data);

}  // namespace signing

#endif
