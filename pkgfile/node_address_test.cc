#include <errno.h>
#include <stdlib.h>

#include "tests/support/device_test.hh"

namespace {

constexpr char address_path[] = "/tmp/addr/.node_addr";

}  // namespace

class NodeAddress : public DeviceTest {};

TEST_F(NodeAddress, IsTheNumberAtTheStartOfTheFirstLine) {
    const struct {
        std::string text;
        int32_t number;
    } cases[] = {
        {"12\n", 12},
        {"12", 12},
        {" \t12 13\n", 12},
        {"12abc\n", 12},
        {"-12\n", -12},
        {"+12\n", 12},
        {"007\n", 7},
        {"0x10\n", 0},
        {"12\n34\n", 12},
        {"2147483647\n", INT32_MAX},
        {"2147483648\n", INT32_MAX},
        {"-2147483649\n", INT32_MIN},
        {"99999999999999999999999\n", INT32_MAX},
        {"", -1},
        {"\n12\n", -1},
        {"x\n", -1},
        {"x12\n", -1},
        {"-\n", -1},
        {std::string(1023, ' ') + "12\n", -1},
        {std::string(1021, ' ') + "12\n", 12},
    };
    const int before = open_descriptors();
    for (const auto &c : cases) {
        write_file(address_path, c.text);
        EXPECT_EQ(cmpnt_get_local_tipc_instance(), c.number) << c.text;
    }
    EXPECT_EQ(open_descriptors(), before);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(NodeAddress, TellsWhyTheFileCannotBeOpened) {
    EXPECT_EQ(cmpnt_get_local_tipc_instance(), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_get_local_tipc_instance",
                       "open(/tmp/addr/.node_addr) failed, reason: No such file or directory\n"));
}

TEST_F(NodeAddress, DoesNotFollowTheTemporaryDirectory) {
    setenv("TMPDIR", "/data", 1);
    write_file("/data/addr/.node_addr", "1\n");
    write_file(address_path, "2\n");
    EXPECT_EQ(cmpnt_get_local_tipc_instance(), 2);
}
