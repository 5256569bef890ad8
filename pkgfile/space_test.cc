#include <errno.h>
#include <sys/statvfs.h>

#include "tests/support/device_test.hh"

namespace {

constexpr uint32_t unknown = 0xFFFFFFFFu;

}  // namespace

class Space : public DeviceTest {};

TEST_F(Space, IsTheRoomForUnprivilegedUsersInKilobytes) {
    const struct {
        unsigned long block_size;
        unsigned long long blocks;
        uint32_t kilobytes;
    } cases[] = {
        {1024, 1000, 1000},
        {4096, 1000, 4000},
        {1536, 1000, 1000},
        {2047, 1000, 1000},
        {512, 1000, 500},
        {512, 1001, 500},
        {1, 1024, 1},
        {1000, 1000, 1000},
        {1023, 7, 7},
        {4096, 0x3FFFFFFF, 0xFFFFFFFCu},
        {4096, 0x40000001, 4},
        {1024, 0x100000005ull, 5},
        {512, 0x100000004ull, 2},
    };
    for (const auto &c : cases) {
        fault::tell_space(c.block_size, c.blocks);
        EXPECT_EQ(cmpnt_get_available_kbytes("/tmp"), c.kilobytes)
            << c.block_size << " " << c.blocks;
    }
}

TEST_F(Space, IsTracedAsTheSystemToldIt) {
    fault::tell_space(4096, 25);
    EXPECT_EQ(cmpnt_get_available_kbytes("/tmp"), 100u);
    EXPECT_TRUE(
        logged("CMPNT_TRACE", "cmpnt_get_available_kbytes", "frsize = 4096, f_bavail = 25\n"));
}

TEST_F(Space, IsThatOfTheRealFileSystem) {
    struct statvfs space;
    ASSERT_EQ(statvfs("/tmp", &space), 0);
    EXPECT_NE(cmpnt_get_available_kbytes("/tmp"), unknown);
    EXPECT_EQ(trace_lines().at(0).message.find("frsize = " + std::to_string(space.f_frsize) + ","),
              0u);
}

TEST_F(Space, IsMeasuredAfterASync) {
    cmpnt_get_available_kbytes("/tmp");
    EXPECT_EQ(fault::order_of({"sync", "statvfs64"}), "sync statvfs64");
    EXPECT_EQ(cmpnt_get_available_kbytes(nullptr), unknown);
    EXPECT_EQ(fault::calls("sync"), 1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_available_kbytes", "param is null.\n"));
}

TEST_F(Space, IsUnknownWhereThereIsNoFileSystem) {
    EXPECT_EQ(cmpnt_get_available_kbytes("/tmp/missing"), unknown);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "cmpnt_get_available_kbytes", "Failed to statvfs for /tmp/missing"));
}

TEST_F(Space, IsNoneWhenTheBlockSizeIsUnknown) {
    fault::tell_space(0, 1000);
    EXPECT_EQ(cmpnt_get_available_kbytes("/tmp"), 0u);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_available_kbytes",
                       "Unknown block size for target filesystem.\n"));
}

TEST_F(Space, InReserveIsEnoughWhenExactlyTheNeedIsFree) {
    fault::tell_space(1024, 100);
    EXPECT_EQ(cmpnt_check_reserve_space_is_enough("/tmp", 100), 0);
    EXPECT_TRUE(logged("CMPNT_TRACE", "cmpnt_check_reserve_space_is_enough",
                       "space enough: type(/tmp), available kbyte(100), need kbyte(100)\n"));
    EXPECT_EQ(cmpnt_check_reserve_space_is_enough("/tmp", 101), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_check_reserve_space_is_enough",
                       "space no enough, type(/tmp), available kbyte(100), need kbyte(101).\n"));
}

TEST_F(Space, InReserveIsComparedAsSignedNumbers) {
    fault::tell_space(1024, 0);
    EXPECT_EQ(cmpnt_check_reserve_space_is_enough("/tmp", -5), 0);
    fault::tell_space(1024, 0x80000000ull);
    EXPECT_EQ(cmpnt_check_reserve_space_is_enough("/tmp", 1), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_check_reserve_space_is_enough",
                       "space no enough, type(/tmp), available kbyte(-2147483648), need "
                       "kbyte(1).\n"));
}

TEST_F(Space, InReserveFailsForNullAndWhenItIsUnknown) {
    EXPECT_EQ(cmpnt_check_reserve_space_is_enough(nullptr, 1), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_check_reserve_space_is_enough", "param is null.\n"));
    EXPECT_EQ(fault::calls("statvfs64"), 0);
    fault::fail("statvfs64", 1, EIO);
    EXPECT_EQ(cmpnt_check_reserve_space_is_enough("/tmp", -5), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_check_reserve_space_is_enough",
                       "cmpnt_get_available_kbytes fail.\n"));
}
