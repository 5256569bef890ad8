#include <errno.h>

#include "tests/support/device_test.hh"

class PointerArray : public DeviceTest {
protected:
    static constexpr int32_t slots = 3;
    void SetUp() override {
        DeviceTest::SetUp();
        for (char *&slot : array) {
            slot = strdup("owned");
        }
    }
    void TearDown() override {
        for (char *slot : array) {
            free(slot);
        }
        DeviceTest::TearDown();
    }
    char *array[slots];
};

TEST_F(PointerArray, IsNulledWithoutFreeing) {
    char *first = array[0];
    char *second = array[1];
    cmpnt_set_pointer_array_null(array, 2);
    EXPECT_EQ(array[0], nullptr);
    EXPECT_EQ(array[1], nullptr);
    EXPECT_STREQ(array[2], "owned");
    EXPECT_STREQ(first, "owned");
    free(first);
    free(second);
}

TEST_F(PointerArray, IsRecycledUpToTheCount) {
    cmpnt_recycle_pointer_array(array, 2);
    EXPECT_EQ(array[0], nullptr);
    EXPECT_EQ(array[1], nullptr);
    EXPECT_STREQ(array[2], "owned");
}

TEST_F(PointerArray, SkipsEmptySlotsWhenItIsRecycled) {
    cmpnt_recycle_pointer_array(array, 2);
    cmpnt_recycle_pointer_array(array, 3);
    EXPECT_EQ(array[2], nullptr);
}

TEST_F(PointerArray, StaysForACountBelowOne) {
    for (int32_t count : {0, -1, INT32_MIN}) {
        cmpnt_set_pointer_array_null(array, count);
        cmpnt_recycle_pointer_array(array, count);
        EXPECT_STREQ(array[0], "owned");
    }
}

TEST_F(PointerArray, MayBeMissing) {
    cmpnt_set_pointer_array_null(nullptr, 3);
    cmpnt_recycle_pointer_array(nullptr, 3);
    EXPECT_EQ(cmpnt_malloc_and_memory(nullptr, 0, "text", 5), -1);
    EXPECT_EQ(cmpnt_malloc_and_memory(array, -1, "text", 5), -1);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(PointerArray, TakesACopyOfAText) {
    char *former = array[1];
    char text[] = "text";
    EXPECT_EQ(cmpnt_malloc_and_memory(array, 1, text, sizeof(text)), 0);
    text[0] = 'n';
    EXPECT_STREQ(array[1], "text");
    EXPECT_STREQ(former, "owned") << "the former block is the caller's to free";
    free(former);
    EXPECT_STREQ(array[0], "owned");
    EXPECT_STREQ(array[2], "owned");
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(PointerArray, CutsATextSilentlyToItsBlock) {
    const struct {
        uint32_t size;
        const char *stored;
    } cases[] = {{1, ""}, {2, "t"}, {4, "tex"}, {5, "text"}, {100, "text"}};
    for (const auto &c : cases) {
        free(array[0]);
        EXPECT_EQ(cmpnt_malloc_and_memory(array, 0, "text", c.size), 0);
        EXPECT_STREQ(array[0], c.stored) << c.size;
    }
    EXPECT_EQ(array[0][99], '\0');
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(PointerArray, KeepsTheSlotForANullText) {
    EXPECT_EQ(cmpnt_malloc_and_memory(array, 0, nullptr, 5), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_malloc_and_memory", "param is null.\n"));
    EXPECT_STREQ(array[0], "owned");
}

TEST_F(PointerArray, HasAnEmptySlotAfterAFailedAllocation) {
    char *former = array[0];
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(cmpnt_malloc_and_memory(array, 0, "text", 5), -1);
    EXPECT_EQ(array[0], nullptr);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_malloc_and_memory", "cmpnt_malloc fail!\n"));
    EXPECT_EQ(trace_messages(),
              (std::vector<std::string>{"error cmpnt_malloc: malloc failed, size(5), error(Cannot "
                                        "allocate memory).\n",
                                        "error cmpnt_malloc_and_memory: cmpnt_malloc fail!\n"}));
    free(former);
}

TEST_F(PointerArray, HasAnEmptySlotAfterABlockOfNoSize) {
    char *former = array[0];
    EXPECT_EQ(cmpnt_malloc_and_memory(array, 0, "text", 0), -1);
    EXPECT_EQ(array[0], nullptr);
    EXPECT_EQ(trace_messages(),
              (std::vector<std::string>{"error cmpnt_malloc: input param is error.\n",
                                        "error cmpnt_malloc_and_memory: cmpnt_malloc fail!\n"}));
    free(former);
}
