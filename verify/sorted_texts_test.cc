#include "verify/sorted_texts.hh"

#include <errno.h>

#include "tests/support/device_test.hh"

class SortedTextsTest : public DeviceTest {
protected:
    void fill(std::initializer_list<const char *> all) {
        for (const char *text : all) {
            ASSERT_TRUE(texts.add(text));
        }
        texts.sort();
    }

    SortedTexts texts;
};

TEST_F(SortedTextsTest, HoldsNothingAtFirst) {
    texts.sort();
    EXPECT_FALSE(texts.contains(""));
    EXPECT_FALSE(texts.any_has_prefix(""));
}

TEST_F(SortedTextsTest, FindsWholeTextsOnly) {
    fill({"/usr/bin/b", "/bin/a", "/usr/bin/ab", "/bin/a", "\xff"});
    for (const char *text : {"/usr/bin/b", "/bin/a", "/usr/bin/ab", "\xff"}) {
        EXPECT_TRUE(texts.contains(text)) << text;
    }
    for (const char *text : {"", "/bin", "/bin/", "/bin/aa", "/usr/bin/a", "0", "\xff\xff"}) {
        EXPECT_FALSE(texts.contains(text)) << text;
    }
}

TEST_F(SortedTextsTest, FindsPrefixes) {
    fill({"/usr/bin/b", "/bin/a", "/usr/bin/ab"});
    for (const char *prefix : {"", "/", "/b", "/bin/a", "/usr", "/usr/bin/a", "/usr/bin/b"}) {
        EXPECT_TRUE(texts.any_has_prefix(prefix)) << prefix;
    }
    for (const char *prefix : {"/a", "/bin/aa", "/c", "/usr/bin/aa", "/usr/bin/bb", "0"}) {
        EXPECT_FALSE(texts.any_has_prefix(prefix)) << prefix;
    }
}

TEST_F(SortedTextsTest, HoldsManyAndForgetsThem) {
    std::vector<std::string> all;
    for (int i = 0; i < 1000; i++) {
        all.push_back("/bin/" + std::to_string((i * 7919) % 1000));
    }
    for (const std::string &text : all) {
        ASSERT_TRUE(texts.add(text.c_str()));
    }
    texts.sort();
    for (const std::string &text : all) {
        ASSERT_TRUE(texts.contains(text.c_str()));
    }
    all.clear();  // they were copied
    EXPECT_TRUE(texts.contains("/bin/1"));
    texts.clear();
    EXPECT_FALSE(texts.contains("/bin/1"));
    fill({"/bin/new"});
    EXPECT_TRUE(texts.contains("/bin/new"));
}

TEST_F(SortedTextsTest, SaysWhenMemoryIsOut) {
    for (const char *function : {"realloc", "strdup"}) {
        texts.clear();
        fault::fail(function, 1, ENOMEM);
        EXPECT_FALSE(texts.add("a"));
        EXPECT_TRUE(texts.add("b"));
        texts.sort();
        EXPECT_FALSE(texts.contains("a"));
        EXPECT_TRUE(texts.contains("b"));
    }
}
