#include <limits.h>

#include "tests/support/device_test.hh"

namespace {

// A record whose every pointer is owned, and what lies behind it in the host's memory.
template <typename Record>
struct Filled {
    Record record = {};
    char *behind[8];

    explicit Filled(int32_t names = 3) {
        record.count = names;
        for (int32_t i = 0; i < names; i++) {
            record.names[i] = strdup("name");
        }
        record.first_text = strdup("first");
        record.second_text = strdup("second");
        for (char *&pointer : behind) {
            pointer = text_behind;
        }
    }
    bool behind_is_untouched() const {
        for (const char *pointer : behind) {
            if (pointer != text_behind) {
                return false;
            }
        }
        return true;
    }
    static inline char text_behind[] = "not the record's";
};

// Frees what a set function only let go of.
template <typename Record>
struct Owned {
    explicit Owned(const Record &record) : copy(record) {}
    ~Owned() {
        for (char *name : copy.names) {
            free(name);
        }
        free(copy.first_text);
        free(copy.second_text);
    }
    Record copy;
};

}  // namespace

template <typename Record>
class RecordTexts : public DeviceTest {
protected:
    static void set_null(file_name_list *record, int32_t count) {
        cmpnt_set_file_info_pointer_null(record, count);
    }
    static void set_null(cmpnt_comm_info *record, int32_t count) {
        cmpnt_set_comm_info_pointer_null(record, count);
    }
    static void recycle(file_name_list *record, int32_t count) {
        cmpnt_recycle_file_info_pointer(record, count);
    }
    static void recycle(cmpnt_comm_info *record, int32_t count) {
        cmpnt_recycle_comm_info_pointer(record, count);
    }
};

using Records = testing::Types<file_name_list, cmpnt_comm_info>;
TYPED_TEST_SUITE(RecordTexts, Records);

TYPED_TEST(RecordTexts, AreNulledWithoutFreeing) {
    Filled<TypeParam> filled;
    Owned<TypeParam> owned(filled.record);
    this->set_null(&filled.record, 2);
    EXPECT_EQ(filled.record.first_text, nullptr);
    EXPECT_EQ(filled.record.second_text, nullptr);
    EXPECT_EQ(filled.record.names[0], nullptr);
    EXPECT_EQ(filled.record.names[1], nullptr);
    EXPECT_STREQ(filled.record.names[2], "name") << "behind the count";
    EXPECT_EQ(filled.record.count, 3);
    EXPECT_STREQ(owned.copy.first_text, "first");
    EXPECT_STREQ(owned.copy.second_text, "second");
    EXPECT_STREQ(owned.copy.names[0], "name");
}

TYPED_TEST(RecordTexts, AreFreedUpToTheCount) {
    Filled<TypeParam> filled;
    this->recycle(&filled.record, 2);
    EXPECT_EQ(filled.record.first_text, nullptr);
    EXPECT_EQ(filled.record.names[0], nullptr);
    EXPECT_EQ(filled.record.names[1], nullptr);
    EXPECT_STREQ(filled.record.names[2], "name") << "behind the count";
    EXPECT_EQ(filled.record.count, 3);
    free(filled.record.names[2]);
}

TYPED_TEST(RecordTexts, AreTheTwoAloneForACountBelowOne) {
    for (int32_t count : {0, -1, INT_MIN}) {
        Filled<TypeParam> let_go;
        Owned<TypeParam> owned(let_go.record);
        this->set_null(&let_go.record, count);
        EXPECT_EQ(let_go.record.first_text, nullptr);
        EXPECT_EQ(let_go.record.second_text, nullptr);
        EXPECT_STREQ(let_go.record.names[0], "name");

        Filled<TypeParam> freed(1);
        this->recycle(&freed.record, count);
        EXPECT_EQ(freed.record.first_text, nullptr);
        EXPECT_STREQ(freed.record.names[0], "name");
        free(freed.record.names[0]);
    }
}

TYPED_TEST(RecordTexts, EndWithTheRecordWhateverTheCount) {
    for (int32_t count : {301, 302, 303, 305}) {
        Filled<TypeParam> let_go(300);
        Owned<TypeParam> owned(let_go.record);
        this->set_null(&let_go.record, count);
        EXPECT_EQ(let_go.record.names[299], nullptr);
        EXPECT_TRUE(let_go.behind_is_untouched());

        // Freeing slot 301 would free the second text twice.
        Filled<TypeParam> freed(300);
        this->recycle(&freed.record, count);
        EXPECT_EQ(freed.record.names[299], nullptr);
        EXPECT_TRUE(freed.behind_is_untouched());
    }
}

TYPED_TEST(RecordTexts, OfAZeroedRecordAreFine) {
    TypeParam record = {};
    this->recycle(&record, 300);
    this->set_null(&record, 300);
    EXPECT_TRUE(trace_messages().empty());
}

class FileRecords : public DeviceTest {};

TEST_F(FileRecords, LeaveTheSecondTextOfAFileListDangling) {
    Filled<file_name_list> filled;
    const char *const second = filled.record.second_text;
    cmpnt_recycle_file_info_pointer(&filled.record, 3);
    EXPECT_EQ(filled.record.second_text, second);
    cmpnt_set_file_info_pointer_null(&filled.record, 3);
    EXPECT_EQ(filled.record.second_text, nullptr);
    cmpnt_recycle_file_info_pointer(&filled.record, 3);  // so this is fine again
}

TEST_F(FileRecords, LeaveNoTextOfACommunicationListDangling) {
    Filled<cmpnt_comm_info> filled;
    cmpnt_recycle_comm_info_pointer(&filled.record, 3);
    EXPECT_EQ(filled.record.second_text, nullptr);
    cmpnt_recycle_comm_info_pointer(&filled.record, 3);
}

TEST_F(FileRecords, RefuseNull) {
    cmpnt_set_file_info_pointer_null(nullptr, 1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_set_file_info_pointer_null", "param is null\n"));
    cmpnt_recycle_file_info_pointer(nullptr, 1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_recycle_file_info_pointer", "param is null\n"));
    cmpnt_set_comm_info_pointer_null(nullptr, 1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_set_comm_info_pointer_null", "param is null\n"));
    cmpnt_recycle_comm_info_pointer(nullptr, 1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_recycle_comm_info_pointer", "param is null\n"));
    EXPECT_EQ(trace_messages().size(), 4u);
}

TEST_F(FileRecords, FreeTheNamesThatTheRecordCounts) {
    Filled<file_name_list> filled(3);
    filled.record.count = 2;
    cmpnt_free_file_name(&filled.record);
    EXPECT_EQ(filled.record.names[0], nullptr);
    EXPECT_EQ(filled.record.names[1], nullptr);
    EXPECT_STREQ(filled.record.names[2], "name");
    EXPECT_EQ(filled.record.count, 2);
    EXPECT_STREQ(filled.record.first_text, "first");
    EXPECT_STREQ(filled.record.second_text, "second");
    for (int32_t count : {0, -1, INT_MIN}) {
        filled.record.count = count;
        cmpnt_free_file_name(&filled.record);
        EXPECT_STREQ(filled.record.names[2], "name");
    }
    filled.record.count = 302;
    cmpnt_free_file_name(&filled.record);
    EXPECT_EQ(filled.record.names[2], nullptr);
    EXPECT_STREQ(filled.record.first_text, "first") << "a text is no name";
    EXPECT_STREQ(filled.record.second_text, "second");
    free(filled.record.first_text);
    free(filled.record.second_text);
}

TEST_F(FileRecords, FreeNoNameOfNullQuietly) {
    cmpnt_free_file_name(nullptr);
    EXPECT_TRUE(trace_messages().empty());
}
