#include <string.h>

#include "tests/support/device_test.hh"

class Communication : public DeviceTest {};

TEST_F(Communication, StartsZeroedWithoutDescriptors) {
    cmpnt_communication record;
    memset(&record, 0x5a, sizeof(record));
    cmpnt_init_communication_struct(&record);
    int32_t words[sizeof(record) / sizeof(int32_t)];
    memcpy(words, &record, sizeof(words));
    EXPECT_EQ(std::vector<int32_t>(words, words + 5), (std::vector<int32_t>{0, 0, -1, -1, -1}));
    EXPECT_TRUE(trace_messages().empty());
}

TEST_F(Communication, OfNothingIsSaidInTheLog) {
    cmpnt_init_communication_struct(nullptr);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_init_communication_struct", "param is null\n"));
    EXPECT_EQ(trace_messages().size(), 1u);
}
