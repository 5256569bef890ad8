#include "tests/support/device_test.hh"

class TrustedDirectory : public DeviceTest {};

constexpr const char *directories[] = {
    "/sbin",          "/lib",           "/lib64",
    "/bin",           "/usr/bin",       "/usr/lib",
    "/usr/sbin",      "/usr/lib64",     "/usr/local/lib64",
    "/usr/local/bin", "/usr/local/lib", "/usr/local/sbin",
    "/etc/init.d",    "/etc/rc.d",
};

TEST_F(TrustedDirectory, IsAnyOfFourteen) {
    for (const std::string directory : directories) {
        EXPECT_EQ(cmpnt_is_safe_verify_dir(directory.c_str()), 1) << directory;
        EXPECT_EQ(cmpnt_is_safe_verify_dir((directory + "/file").c_str()), 1) << directory;
        const std::string shorter = directory.substr(0, directory.size() - 1);
        const bool begins_with_another = shorter.back() == '6';
        EXPECT_EQ(cmpnt_is_safe_verify_dir(shorter.c_str()), begins_with_another ? 1 : 0)
            << shorter;
        EXPECT_EQ(cmpnt_is_safe_verify_dir(("/opt" + directory).c_str()), 0) << directory;
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(TrustedDirectory, IsAPlainPrefix) {
    for (const char *path :
         {"/binx", "/library", "/lib32/a", "/usr/binary", "/etc/rc.d0", "/bin/.."}) {
        EXPECT_EQ(cmpnt_is_safe_verify_dir(path), 1) << path;
    }
}

TEST_F(TrustedDirectory, IsNothingElse) {
    for (const char *path : {"", "/", "bin", "//bin", "/BIN", "/usr", "/usr/share/a", "/etc/rc3.d",
                             "/usr/local/share", "/etc/passwd", "/opt/bin"}) {
        EXPECT_EQ(cmpnt_is_safe_verify_dir(path), 0) << path;
    }
}

TEST_F(TrustedDirectory, RefusesNull) {
    EXPECT_EQ(cmpnt_is_safe_verify_dir(nullptr), 0);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_is_safe_verify_dir", "param is null.\n"));
}
