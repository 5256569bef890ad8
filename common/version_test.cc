#include "tests/support/device_test.hh"

class Version : public DeviceTest {};

TEST_F(Version, IsTheSameInMacroProjectAndCall) {
    EXPECT_STREQ(cmpnt_db_version(), CMPNT_DB_VERSION);
    EXPECT_STREQ(CMPNT_DB_VERSION, CMPNT_PROJECT_VERSION);
}

TEST_F(Version, IsMadeOfItsThreeNumbers) {
    const std::string numbers = std::to_string(CMPNT_DB_VERSION_MAJOR) + "." +
                                std::to_string(CMPNT_DB_VERSION_MINOR) + "." +
                                std::to_string(CMPNT_DB_VERSION_PATCH);
    EXPECT_EQ(numbers, CMPNT_DB_VERSION);
}
