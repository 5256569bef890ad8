#include <limits.h>

#include "tests/support/device_test.hh"

class Exchange : public DeviceTest {
protected:
    static constexpr int32_t size = 400;
    char a[size];
    char b[size];

    void fill(const std::string &text_a, const std::string &text_b) {
        memset(a, '#', sizeof(a));
        memset(b, '#', sizeof(b));
        snprintf(a, sizeof(a), "%s", text_a.c_str());
        snprintf(b, sizeof(b), "%s", text_b.c_str());
    }
};

TEST_F(Exchange, SwapsTwoTextsAndLeavesNothingBehind) {
    fill("a longer text", "short");
    EXPECT_EQ(cmpnt_exchange_str(a, b, 20, 30), 0);
    EXPECT_EQ(std::string(a, 20), std::string("short") + std::string(15, '\0'));
    EXPECT_EQ(std::string(b, 30), std::string("a longer text") + std::string(17, '\0'));
    EXPECT_EQ(a[20], '#');
    EXPECT_EQ(b[30], '#');
}

TEST_F(Exchange, SwapsEmptyTexts) {
    fill("", "text");
    EXPECT_EQ(cmpnt_exchange_str(a, b, size, size), 0);
    EXPECT_STREQ(a, "text");
    EXPECT_STREQ(b, "");
}

TEST_F(Exchange, CutsToTheOtherBufferSilently) {
    fill("abcdef", "uvwxyz");
    EXPECT_EQ(cmpnt_exchange_str(a, b, 4, 6), 0);
    EXPECT_STREQ(a, "uvw");
    EXPECT_STREQ(b, "abcde");
    EXPECT_EQ(a[4], 'e') << "behind the size nothing is written";
    EXPECT_EQ(b[6], '\0');
    EXPECT_EQ(b[7], '#');
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Exchange, LeavesABufferOfOneByteEmpty) {
    fill("one", "two");
    EXPECT_EQ(cmpnt_exchange_str(a, b, 1, size), 0);
    EXPECT_STREQ(a, "");
    EXPECT_STREQ(b, "one");
    EXPECT_EQ(cmpnt_exchange_str(a, b, size, 1), 0);
    EXPECT_STREQ(a, "one");
    EXPECT_STREQ(b, "");
}

TEST_F(Exchange, KeepsMoreOfTheSecondTextThanOfTheFirst) {
    fill(std::string(300, 'a'), std::string(300, 'b'));
    EXPECT_EQ(cmpnt_exchange_str(a, b, size, size), 0);
    EXPECT_EQ(std::string(a), std::string(300, 'b'));
    EXPECT_EQ(std::string(b), std::string(259, 'a'));
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Exchange, OfABufferWithItselfKeepsTheText) {
    fill("text", "");
    EXPECT_EQ(cmpnt_exchange_str(a, a, size, size), 0);
    EXPECT_STREQ(a, "text");
}

TEST_F(Exchange, RefusesNull) {
    fill("text", "");
    EXPECT_EQ(cmpnt_exchange_str(nullptr, a, size, size), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_exchange_str", "param is null.\n"));
    forget_log();
    EXPECT_EQ(cmpnt_exchange_str(a, nullptr, size, size), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_exchange_str", "param is null.\n"));
    EXPECT_STREQ(a, "text");
}

TEST_F(Exchange, LeavesBothTextsWhenABufferHasNoSize) {
    fill("one", "two");
    for (int32_t bad : {0, -1, INT_MIN}) {
        EXPECT_EQ(cmpnt_exchange_str(a, b, bad, size), -1);
        EXPECT_EQ(cmpnt_exchange_str(a, b, size, bad), -1);
    }
    EXPECT_STREQ(a, "one");
    EXPECT_STREQ(b, "two");
    EXPECT_TRUE(trace_messages().empty());
}

class NameFilter : public DeviceTest {
protected:
    static constexpr int32_t count = 4;
    static constexpr size_t size = 16;
    char buffers[count][size];
    char *array[count];

    void SetUp() override {
        DeviceTest::SetUp();
        const char *texts[count] = {"/a/first", "/b/2", "/c/the-third", "/d"};
        for (int32_t i = 0; i < count; i++) {
            memset(buffers[i], '#', size);
            snprintf(buffers[i], size, "%s", texts[i]);
            array[i] = buffers[i];
        }
    }
    std::vector<std::string> texts() {
        std::vector<std::string> all;
        for (const char *buffer : buffers) {
            all.push_back(buffer);
        }
        return all;
    }
    using Texts = std::vector<std::string>;
};

TEST_F(NameFilter, MovesTheLaterTextsDownOneBuffer) {
    EXPECT_EQ(cmpnt_path_name_filter(array, count, 1), 0);
    EXPECT_EQ(texts(), (Texts{"/a/first", "/c/the-third", "/d", ""}));
    for (int32_t i = 0; i < count; i++) {
        EXPECT_EQ(array[i], buffers[i]) << "the pointers stay";
    }
}

TEST_F(NameFilter, RemovesTheFirstAndTheLast) {
    EXPECT_EQ(cmpnt_path_name_filter(array, count, 0), 0);
    EXPECT_EQ(texts(), (Texts{"/b/2", "/c/the-third", "/d", ""}));
    EXPECT_EQ(cmpnt_path_name_filter(array, 3, 2), 0);
    EXPECT_EQ(texts(), (Texts{"/b/2", "/c/the-third", "", ""}));
}

TEST_F(NameFilter, ZeroesOverTheTextAndNotOverTheBuffer) {
    EXPECT_EQ(cmpnt_path_name_filter(array, count, 2), 0);
    // "/c/the-third" became "/d", the rest of its 12 bytes is zero, and the buffer's tail stays.
    EXPECT_EQ(std::string(buffers[2], size), std::string("/d") + std::string(11, '\0') + "###");
    EXPECT_EQ(std::string(buffers[3], size), std::string(3, '\0') + std::string(13, '#'));
}

TEST_F(NameFilter, LeavesWhatIsBehindTheCount) {
    EXPECT_EQ(cmpnt_path_name_filter(array, 2, 0), 0);
    EXPECT_EQ(texts(), (Texts{"/b/2", "", "/c/the-third", "/d"}));
}

TEST_F(NameFilter, ChangesNothingForAnIndexOutsideTheArray) {
    const Texts before = texts();
    for (int32_t index : {4, 5, INT_MAX, -1, INT_MIN}) {
        EXPECT_EQ(cmpnt_path_name_filter(array, count, index), 0);
    }
    EXPECT_EQ(cmpnt_path_name_filter(array, 0, 0), 0);
    EXPECT_EQ(cmpnt_path_name_filter(array, -1, 0), 0);
    EXPECT_EQ(texts(), before);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(NameFilter, StepsOverEmptySlots) {
    array[2] = nullptr;
    EXPECT_EQ(cmpnt_path_name_filter(array, count, 2), 0);
    EXPECT_EQ(texts(), (Texts{"/a/first", "/b/2", "/c/the-third", "/d"}));
    EXPECT_EQ(cmpnt_path_name_filter(array, count, 1), 0);
    EXPECT_EQ(texts(), (Texts{"/a/first", "/d", "/c/the-third", ""}));
    EXPECT_EQ(array[2], nullptr);
}

TEST_F(NameFilter, RefusesANullArray) {
    EXPECT_EQ(cmpnt_path_name_filter(nullptr, 1, 0), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_path_name_filter", "param is null.\n"));
}
