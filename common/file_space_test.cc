#include <errno.h>

#include "tests/support/device_test.hh"

namespace {

constexpr unsigned long block_size = 1024;

}  // namespace

class FileSpace : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        write_file(file, std::string(10 * 1024 + 5, 'x'));
    }

    // Whether a file of 10 kilobytes and so many more fit into so many.
    int32_t check(unsigned long long free_kbytes, int32_t extra_kbytes) {
        fault::tell_space(block_size, free_kbytes);
        return cmpnt_check_file_space_is_enough("/tmp", file, extra_kbytes);
    }

    const char *file = "/tmp/package.ipk";
};

TEST_F(FileSpace, IsEnoughWhenExactlyTheNeedIsFree) {
    EXPECT_EQ(check(15, 5), 0);
    EXPECT_TRUE(logged("SERVER_TRACE", "cmpnt_check_file_space_is_enough",
                       "data file space enough: available kbyte(15), need kbyte(15)\n"));
}

TEST_F(FileSpace, IsNotEnoughBelowTheNeed) {
    EXPECT_EQ(check(14, 5), -1);
    EXPECT_TRUE(logged("SERVER_ERROR", "cmpnt_check_file_space_is_enough",
                       "data file space no enough, available kbyte(14), need kbyte(15).\n"));
}

TEST_F(FileSpace, TakesANegativeExtra) {
    EXPECT_EQ(check(5, -5), 0);
    EXPECT_EQ(check(4, -5), -1);
}

TEST_F(FileSpace, ComparesAsSignedNumbers) {
    EXPECT_EQ(check(0x7FFFFFFF, 0), 0);
    EXPECT_EQ(check(0x80000000, 0), -1);
    EXPECT_TRUE(
        logged("SERVER_ERROR", "cmpnt_check_file_space_is_enough",
               "data file space no enough, available kbyte(-2147483648), need kbyte(10).\n"));
    EXPECT_EQ(check(0, INT32_MAX), 0) << "the need wraps to a negative number";
    EXPECT_TRUE(logged("SERVER_TRACE", "cmpnt_check_file_space_is_enough",
                       "data file space enough: available kbyte(0), need kbyte(-2147483639)\n"));
}

TEST_F(FileSpace, RefusesNull) {
    EXPECT_EQ(cmpnt_check_file_space_is_enough(nullptr, file, 0), -1);
    EXPECT_TRUE(logged("SERVER_ERROR", "cmpnt_check_file_space_is_enough", "param is null.\n"));
    forget_log();
    EXPECT_EQ(cmpnt_check_file_space_is_enough("/tmp", nullptr, 0), -1);
    EXPECT_TRUE(logged("SERVER_ERROR", "cmpnt_check_file_space_is_enough", "param is null.\n"));
    EXPECT_EQ(fault::calls("statvfs64"), 0);
}

TEST_F(FileSpace, FailsWhenTheRoomIsUnknown) {
    EXPECT_EQ(cmpnt_check_file_space_is_enough("/tmp/missing", file, 0), -1);
    EXPECT_TRUE(logged("SERVER_ERROR", "cmpnt_check_file_space_is_enough",
                       "cmpnt_get_available_kbytes fail.\n"));
}

TEST_F(FileSpace, FailsWhenTheFileIsUnknown) {
    EXPECT_EQ(cmpnt_check_file_space_is_enough("/tmp", "/tmp/missing", 0), -1);
    EXPECT_TRUE(
        logged("SERVER_ERROR", "cmpnt_check_file_space_is_enough", "cmpnt_get_file_size fail.\n"));
}

TEST_F(FileSpace, FailsForAllBitsSetEvenIfThatWereTheRoom) {
    EXPECT_EQ(check(0xFFFFFFFF, 0), -1);
    EXPECT_TRUE(logged("SERVER_ERROR", "cmpnt_check_file_space_is_enough",
                       "cmpnt_get_available_kbytes fail.\n"));
}
