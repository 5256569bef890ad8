#include <errno.h>

#include "tests/support/device_test.hh"

class Memory : public DeviceTest {};

TEST_F(Memory, IsZeroFilledHoweverDirtyTheHeapIs) {
    constexpr uint32_t size = 200;
    void *dirty = malloc(size);
    ASSERT_NE(dirty, nullptr);
    memset(dirty, 0xFF, size);
    free(dirty);
    char *block = static_cast<char *>(cmpnt_malloc(size));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(std::string(block, size), std::string(size, '\0'));
    cmpnt_free_pointer(block);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Memory, IsRefusedForSizeZero) {
    EXPECT_EQ(cmpnt_malloc(0), nullptr);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_malloc", "input param is error.\n"));
    EXPECT_EQ(fault::calls("calloc"), 0);
}

TEST_F(Memory, ReportsTheSizeThatCouldNotBeHad) {
    fault::fail("calloc", 1, ENOMEM, 2);
    EXPECT_EQ(cmpnt_malloc(64), nullptr);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_malloc",
                       "malloc failed, size(64), error(Cannot allocate memory).\n"));
    EXPECT_EQ(cmpnt_malloc(UINT32_MAX), nullptr);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_malloc",
                       "malloc failed, size(4294967295), error(Cannot allocate memory).\n"));
}

TEST_F(Memory, FreesNullQuietly) {
    cmpnt_free_pointer(nullptr);
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Memory, FreesAndNullsAPointerOfAnyType) {
    char *text = static_cast<char *>(cmpnt_malloc(8));
    cmpnt_free_pointer_set_null(&text);
    EXPECT_EQ(text, nullptr);
    cmpnt_list_head *head = static_cast<cmpnt_list_head *>(cmpnt_malloc(sizeof(*head)));
    cmpnt_free_pointer_set_null(&head);
    EXPECT_EQ(head, nullptr);
    // And once more, now that it is null.
    cmpnt_free_pointer_set_null(&head);
    EXPECT_EQ(head, nullptr);
    cmpnt_free_pointer_set_null(nullptr);
    EXPECT_TRUE(trace_messages().empty());
}
