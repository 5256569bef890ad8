#include <ctype.h>

#include <random>

#include "tests/support/device_test.hh"

namespace {

struct Pair {
    const char *a;
    const char *b;
    int32_t result;
};

const Pair pairs[] = {
    {"1.2.10", "1.2.9", 4},  // numbers compare by value
    {"1.02", "1.2", 3},
    {"1.2", "1.2.0", 2},
    {"1.0~rc1", "1.0", 2},
    {"1.0a", "1.0", 4},
    {"1.0-1", "1.0.1", 2},
    {"", "1.0", 2},
    {"1.0", "~", 4},
    {"V1.0", "V1.0", 3},
    {"", "", 3},
    {"", "0", 3},  // zeros are skipped, whatever they stand against
    {"", "000", 3},
    {"", "00a", 2},
    {"", "a", 2},
    {"", "~", 4},
    {"~", "~~", 4},
    {"~~a", "~", 2},
    {"0~", "", 2},
    {"1", "~1", 4},
    {"A", "a", 2},  // by code
    {"Z", "a", 2},
    {"z", "+", 2},  // letters before all others
    {"a", "1", 4},
    {".", "1", 4},
    {".", "", 4},
    {" ", "z", 4},
    {"1:0", "1.0", 4},  // no epoch
    {"2:1", "3", 2},
    {"1-2", "1-10", 2},
    {"1.0-9", "1.0a", 4},
    {"100", "99", 4},  // the longer number wins before any digit does
    {"100", "0099", 4},
    {"0012", "012", 3},
    {"1.0012x", "1.12x", 3},
    {"1.0012x", "1.12y", 2},
    {"1.0012x2", "1.12x1", 4},
    {"10", "1", 4},
    {"10", "1a", 4},
    {"1001", "1010", 2},
    {"1091", "1019", 4},  // the first difference counts
    {"10.5", "100.1", 2},
    {"1.10", "1.010", 3},
    {"1.0", "1.", 3},
    {"1.00.0", "1..", 2},  // here the zeros stand against a character,
    {"a0", "a", 3},
    {"a0b", "ab", 2},
    {"0", "00", 3},
    {"01~", "1", 2},
    {"99999999999999999999999999999999999999990", "99999999999999999999999999999999999999989", 4},
    {"4294967297", "1", 4},
    {"1\xe9", "1+", 4},  // bytes are not signed
    {"1\xe9", "1z", 4},
    {"\xff", "\x80", 4},
    {"\x80", "", 4},
    {"1.0\n", "1.0", 4},
};

// The order as it is defined, step by step.
int weight(unsigned char c) {
    if (c == '~') {
        return -1;
    }
    if (c == '\0' || isdigit(c) != 0) {
        return 0;
    }
    return isalpha(c) != 0 ? c : c + 256;
}

bool in_text(unsigned char c) { return c != '\0' && isdigit(c) == 0; }

int32_t step_by_step(const unsigned char *a, const unsigned char *b) {
    while (*a != '\0' || *b != '\0') {
        for (; in_text(*a) || in_text(*b); a++, b++) {
            if (weight(*a) != weight(*b)) {
                return weight(*a) > weight(*b) ? 4 : 2;
            }
        }
        for (; *a == '0'; a++) {}
        for (; *b == '0'; b++) {}
        int first = 0;
        for (; isdigit(*a) != 0 && isdigit(*b) != 0; a++, b++) {
            first = first != 0 ? first : *a - *b;
        }
        if (isdigit(*a) != 0 || isdigit(*b) != 0) {
            return isdigit(*a) != 0 ? 4 : 2;
        }
        if (first != 0) {
            return first > 0 ? 4 : 2;
        }
    }
    return 3;
}

std::string random_text(std::mt19937 &random) {
    static const char alphabet[] = "000112299aZ~.-:\x80\xe9";
    std::string text(random() % 9, '\0');
    for (char &c : text) {
        c = alphabet[random() % (sizeof(alphabet) - 1)];
    }
    return text;
}

}  // namespace

class VersionCompare : public DeviceTest {};

TEST_F(VersionCompare, OrdersPairsBothWaysAndLogsNothing) {
    for (const Pair &pair : pairs) {
        EXPECT_EQ(cmpnt_version_compare(pair.a, pair.b), pair.result) << pair.a << " " << pair.b;
        EXPECT_EQ(cmpnt_version_compare(pair.b, pair.a), 6 - pair.result)
            << pair.b << " " << pair.a;
    }
    EXPECT_FALSE(exists(trace_path()));
    EXPECT_TRUE(platform.syslog.empty());
}

TEST_F(VersionCompare, EqualsTheOrderAsDefinedOnRandomTexts) {
    std::mt19937 random(20240301);
    int equal_but_different = 0;
    for (int i = 0; i < 50000; i++) {
        // A common start makes the texts part in the middle of things.
        const std::string start = random_text(random);
        const std::string a = start + random_text(random);
        const std::string b = start + random_text(random);
        const int32_t expected = step_by_step(reinterpret_cast<const unsigned char *>(a.c_str()),
                                              reinterpret_cast<const unsigned char *>(b.c_str()));
        ASSERT_EQ(cmpnt_version_compare(a.c_str(), b.c_str()), expected) << a << " " << b;
        equal_but_different += expected == 3 && a != b;
    }
    EXPECT_GT(equal_but_different, 100);
}

TEST_F(VersionCompare, TakesTextsOfAnyLength) {
    const std::string zeros(100000, '0');
    const std::string digits(100000, '7');
    EXPECT_EQ(cmpnt_version_compare((zeros + digits).c_str(), digits.c_str()), 3);
    EXPECT_EQ(cmpnt_version_compare((digits + "1").c_str(), (digits + "2").c_str()), 2);
    EXPECT_EQ(cmpnt_version_compare((digits + "1").c_str(), digits.c_str()), 4);
}

TEST_F(VersionCompare, RefusesNull) {
    EXPECT_EQ(cmpnt_version_compare(nullptr, "1"), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_version_compare", "param is null.\n"));
    EXPECT_EQ(cmpnt_version_compare("1", nullptr), -1);
    EXPECT_EQ(cmpnt_version_compare(nullptr, nullptr), -1);
    EXPECT_EQ(traced("error", "cmpnt_version_compare", "param is null.\n"), 3);
}
