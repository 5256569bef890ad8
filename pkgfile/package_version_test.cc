#include <stdlib.h>
#include <unistd.h>

#include "tests/support/device_test.hh"

namespace {

constexpr char status[] = "/var/lib/opkg/status";
constexpr char control[] = "/opt/control";
constexpr char reader[] = "cmpnt_get_pkg_info_from_control";
constexpr char finder[] = "cmpnt_get_pkg_current_version";

constexpr char three_packages[] =
    "Package: app\nVersion: 1.0-r1\nDepends: libc6 (>= 2.31)\nStatus: install user installed\n"
    "Serial: 12, 13\nCard_type: mpu\nInstalled-Size: 12\n\n"
    "Package: app-extra\nVersion: 2.0\nDescription: more of it\n Version: 9.9\n\n"
    "Package: ap\nVersion: 3.0\n\n";

}  // namespace

class PackageVersion : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        memset(version, 'x', sizeof(version));
    }

    static testing::AssertionResult says(const std::string &message) {
        return logged("CMPNT_ERROR", finder, message);
    }
    int32_t find(const std::string &name) {
        return cmpnt_get_pkg_current_version(name.c_str(), version);
    }
    bool untouched() const { return std::string(version, sizeof(version)) == std::string(40, 'x'); }
    // Fails as for a package that is not there.
    testing::AssertionResult fails_for(const std::string &name) {
        forget_log();
        if (find(name) != -1) {
            return testing::AssertionFailure() << name << " has the version " << version;
        }
        if (!untouched()) {
            return testing::AssertionFailure() << "written: " << version;
        }
        return says("parse_pkg_info_from_file fail, pkg_name(" + name + ").\n");
    }

    char version[40];  // more than the library may write
};

TEST_F(PackageVersion, IsThatOfThePackageNamed) {
    const char *const cases[][2] = {{"app", "1.0-r1"}, {"app-extra", "2.0"}, {"ap", "3.0"}};
    write_file(status, three_packages);
    for (const auto &[name, expected] : cases) {
        EXPECT_EQ(find(name), 0);
        EXPECT_STREQ(version, expected);
        EXPECT_TRUE(logged("CMPNT_TRACE", finder,
                           std::string("get current version: pkg_name(") + name +
                               "), cur_version(" + expected + ").\n"));
    }
    EXPECT_EQ(read_file(status), three_packages);
}

TEST_F(PackageVersion, FillsAllOfItsBufferAndNoMore) {
    write_file(status, three_packages);
    EXPECT_EQ(find("app-extra"), 0);
    EXPECT_EQ(std::string(version, sizeof(version)),
              "2.0" + std::string(29, '\0') + std::string(8, 'x'));
}

TEST_F(PackageVersion, IsCutAt31Bytes) {
    for (size_t length : {30, 31, 32, 200}) {
        const std::string digits(length, '7');
        write_file(status, "Package: app\nVersion: " + digits + "\n\n");
        EXPECT_EQ(find("app"), 0);
        EXPECT_EQ(std::string(version), digits.substr(0, 31));
        EXPECT_EQ(std::string(version + 32, 8), std::string(8, 'x'));
    }
}

TEST_F(PackageVersion, IsTheFirstOfAPackageThatIsThereTwice) {
    write_file(status, "Package: app\nVersion: 1\n\nPackage: b\n\nPackage: app\nVersion: 2\n\n");
    EXPECT_EQ(find("app"), 0);
    EXPECT_STREQ(version, "1");
}

TEST_F(PackageVersion, IsFoundInALastParagraphThatDoesNotEnd) {
    for (const char *end : {"", "\n", "\n\n", "\n \t\n"}) {
        write_file(status, std::string("Package: a\nVersion: 1\n\nPackage: app\nVersion: 2") + end);
        EXPECT_EQ(find("app"), 0);
        EXPECT_STREQ(version, "2");
    }
}

TEST_F(PackageVersion, OfAPackageThatIsNotThereFails) {
    write_file(status, three_packages);
    for (const char *name : {"other", "a", "app-", "app-extra2", "APP", " app", "app ", "1.0-r1"}) {
        EXPECT_TRUE(fails_for(name));
    }
    EXPECT_TRUE(fails_for("100%s%n"));
}

TEST_F(PackageVersion, OfTheLastParagraphIsNobodyElses) {
    for (const char *end : {"", "\n"}) {
        write_file(status, std::string("Package: a\nVersion: 1\n\nPackage: app\nVersion: 2") + end);
        EXPECT_TRUE(fails_for("other"));
        EXPECT_TRUE(fails_for("ap"));
        EXPECT_TRUE(fails_for("app2"));
    }
}

TEST_F(PackageVersion, OfNoNameFails) {
    for (const char *text : {"", "\n", "\n\n", "Version: 1\n", "Version: 1\n\n", three_packages}) {
        write_file(status, text);
        EXPECT_TRUE(fails_for("")) << text;
    }
}

TEST_F(PackageVersion, MayBeEmpty) {
    write_file(status, "Package: app\nArchitecture: arm\n\nPackage: b\nVersion: 2\n\n");
    EXPECT_EQ(find("app"), 0);
    EXPECT_EQ(std::string(version, 32), std::string(32, '\0'));
    EXPECT_TRUE(
        logged("CMPNT_TRACE", finder, "get current version: pkg_name(app), cur_version().\n"));
}

TEST_F(PackageVersion, IsNotLookedForBehindAFieldWithoutValue) {
    write_file(status, "Package: a\nArchitecture:\nVersion: 1\n\nPackage: app\nVersion: 2\n\n");
    EXPECT_TRUE(fails_for("app"));
    EXPECT_EQ(find("a"), 0);
    EXPECT_STREQ(version, "");
}

TEST_F(PackageVersion, OfANameLongerThanItsFieldFails) {
    const std::string name(79, 'n');
    write_file(status,
               "Package: " + name + "\nVersion: 1\n\nPackage: " + name + "n\nVersion: 2\n\n");
    EXPECT_EQ(find(name), 0);
    EXPECT_STREQ(version, "1");
    memset(version, 'x', sizeof(version));
    EXPECT_TRUE(fails_for(name + "n"));
    EXPECT_TRUE(fails_for(std::string(600, 'n')));
}

TEST_F(PackageVersion, NeedsAStatusFile) {
    EXPECT_EQ(find("app"), -1);
    EXPECT_TRUE(says("status(/var/lib/opkg/status) is not exist\n"));
    EXPECT_EQ(trace_lines().size(), 1u);
    EXPECT_TRUE(untouched());
}

TEST_F(PackageVersion, NeedsAStatusFileThatOpens) {
    make_directories(status);
    EXPECT_TRUE(fails_for("app"));
    remove_tree(status);
    ASSERT_EQ(symlink("/var/nowhere", status), 0);
    EXPECT_TRUE(fails_for("app"));
    EXPECT_FALSE(exists("/var/nowhere"));
}

TEST_F(PackageVersion, FailsHalfWayWithNothingLost) {
    const int descriptors = open_descriptors();
    write_file(status, "Package: app\nSerial: 1\nCard_type: mpu\nVersion: 1\n" +
                           std::string(1048576, 'x') + "\n\n");
    EXPECT_TRUE(fails_for("app"));
    EXPECT_EQ(open_descriptors(), descriptors);
}

TEST_F(PackageVersion, FailsWithoutMemory) {
    write_file(status, three_packages);
    for (int call : {1, 2}) {
        fault::fail("calloc", call, ENOMEM);
        EXPECT_TRUE(fails_for("app"));
    }
    EXPECT_EQ(find("app"), 0);
}

TEST_F(PackageVersion, OfNullFails) {
    write_file(status, three_packages);
    EXPECT_EQ(cmpnt_get_pkg_current_version(nullptr, version), -1);
    EXPECT_TRUE(says("param is null\n"));
    EXPECT_EQ(cmpnt_get_pkg_current_version("app", nullptr), -1);
    EXPECT_EQ(traced("error", finder, "param is null\n"), 2);
    EXPECT_EQ(trace_lines().size(), 2u);
    EXPECT_TRUE(untouched());
}

class ControlOfPackage : public DeviceTest {
protected:
    void TearDown() override {
        free(record.serial);
        free(record.card_type);
        DeviceTest::TearDown();
    }
    static testing::AssertionResult says(const std::string &message) {
        return logged("CMPNT_ERROR", reader, message);
    }

    cmpnt_control_info record = {};
};

TEST_F(ControlOfPackage, IsReadWithWhatOnlySmusHave) {
    write_file(control,
               "Package: smu-1\nVersion: 1.2\nMD5Sum: d41d\nIs_reboot: 1\nInstalled-Size: 0x10\n"
               "Serial: 12, 13\nCard_type: mpu; lpu\nDescription: a patch\n\n"
               "Package: other\nSerial: 99\n");
    record.installed_time = 7;
    EXPECT_EQ(cmpnt_get_pkg_info_from_control(&record, control), 0);
    EXPECT_STREQ(record.package, "smu-1");
    EXPECT_STREQ(record.version, "1.2");
    EXPECT_STREQ(record.md5_sum, "d41d");
    EXPECT_STREQ(record.description, "a patch");
    EXPECT_STREQ(record.serial, "12, 13");
    EXPECT_STREQ(record.card_type, "mpu; lpu");
    EXPECT_EQ(record.is_reboot, 1);
    EXPECT_EQ(record.installed_size, 16u);
    EXPECT_EQ(record.installed_time, 0u);
    EXPECT_EQ(trace_lines().size(), 1u);
    EXPECT_EQ(traced("trace", "cmpnt_file_blank_line_deal",
                     "smu_name(smu-1), ver(1.2), md5(d41d), reboot(1), size(16), "
                     "description(a patch).\n"),
              1);
}

TEST_F(ControlOfPackage, MayLackABlankLineAtItsEnd) {
    write_file(control, "Package: smu-1\nSerial: 5");
    EXPECT_EQ(cmpnt_get_pkg_info_from_control(&record, control), 0);
    EXPECT_STREQ(record.package, "smu-1");
    EXPECT_STREQ(record.serial, "5");
    EXPECT_EQ(record.card_type, nullptr);
}

TEST_F(ControlOfPackage, MustBeThere) {
    EXPECT_EQ(cmpnt_get_pkg_info_from_control(&record, control), -1);
    EXPECT_TRUE(says("parse_pkg_info_from_file fail, control_path(/opt/control).\n"));
    EXPECT_EQ(traced("error", "parse_pkg_info_from_file", "file(/opt/control) is no exist.\n"), 1);
}

TEST_F(ControlOfPackage, GivesItsStringsAwayAfterAFailureToo) {
    write_file(control, "Serial: 5\nCard_type: mpu\n" + std::string(1048576, 'x') + "\n");
    EXPECT_EQ(cmpnt_get_pkg_info_from_control(&record, control), -1);
    EXPECT_TRUE(says("parse_pkg_info_from_file fail, control_path(/opt/control).\n"));
    EXPECT_STREQ(record.serial, "5");
    EXPECT_STREQ(record.card_type, "mpu");
}

TEST_F(ControlOfPackage, OfNullFails) {
    write_file(control, "Package: smu-1\n\n");
    EXPECT_EQ(cmpnt_get_pkg_info_from_control(nullptr, control), -1);
    EXPECT_TRUE(says("param is null\n"));
    EXPECT_EQ(cmpnt_get_pkg_info_from_control(&record, nullptr), -1);
    EXPECT_EQ(traced("error", reader, "param is null\n"), 2);
    EXPECT_EQ(trace_lines().size(), 2u);
}
