#include "tests/support/device_test.hh"

namespace {

std::string cut(std::string path) {
    get_path_exclude_file_name(&path[0]);
    return path.c_str();
}

}  // namespace

class ParentPath : public DeviceTest {};

TEST_F(ParentPath, EndsBeforeTheLastSlash) {
    EXPECT_EQ(cut("/a/b/c.bin"), "/a/b");
    EXPECT_EQ(cut("/c.bin"), "");
    EXPECT_EQ(cut("/"), "");
    EXPECT_EQ(cut("a/b"), "a");
    EXPECT_EQ(cut("/a/b/"), "/a/b");
    EXPECT_EQ(cut("/a//b"), "/a/");
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(ParentPath, LeavesABareNameAlone) {
    EXPECT_EQ(cut("c.bin"), "c.bin");
    EXPECT_TRUE(logged("CMPNT_ERROR", "get_path_exclude_file_name", "str is null.\n"));
    EXPECT_EQ(cut(""), "");
    EXPECT_EQ(traced("error", "get_path_exclude_file_name", "str is null.\n"), 2);
}

TEST_F(ParentPath, RefusesNull) {
    get_path_exclude_file_name(nullptr);
    EXPECT_TRUE(logged("CMPNT_ERROR", "get_path_exclude_file_name", "input param is null.\n"));
}
