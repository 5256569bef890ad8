#include "verify/name_table.hh"

#include <errno.h>

#include <utility>

#include "tests/support/device_test.hh"

class NameTableTest : public DeviceTest {
protected:
    static std::vector<std::string> many_names() {
        std::vector<std::string> names;
        for (int i = 0; i < 3000; i++) {
            names.push_back("/usr/lib/file" + std::to_string(i));
        }
        return names;
    }
};

TEST_F(NameTableTest, FindsNothingWhenEmpty) {
    const NameTable table;
    EXPECT_EQ(table.find(""), nullptr);
    EXPECT_EQ(table.find("a"), nullptr);
    EXPECT_EQ(fault::calls("calloc"), 0);
}

TEST_F(NameTableTest, FindsEachOfManyNames) {
    const std::vector<std::string> names = many_names();
    NameTable table;
    for (const std::string &name : names) {
        ASSERT_TRUE(table.add(name.c_str(), &name));
    }
    for (const std::string &name : names) {
        EXPECT_EQ(table.find(std::string(name).c_str()), &name);
        EXPECT_EQ(table.find((name + "x").c_str()), nullptr);
    }
    EXPECT_EQ(table.find(""), nullptr);
}

TEST_F(NameTableTest, KeepsTheFirstOfAName) {
    int first = 0, second = 0;
    NameTable table;
    ASSERT_TRUE(table.add("", &first));
    ASSERT_TRUE(table.add("", &second));
    EXPECT_EQ(table.find(""), &first);
    for (int i = 0; i < 1000; i++) {
        ASSERT_TRUE(table.add("", &second));  // takes no room
    }
    EXPECT_EQ(fault::calls("calloc"), 1);
}

TEST_F(NameTableTest, TellsNamesOfTheSameHashApart) {
    const std::pair<const char *, const char *> pairs[] = {
        {"costarring", "liquid"}, {"declinate", "macallums"}, {"altarage", "zinke"}};
    NameTable table;
    for (const auto &[one, other] : pairs) {
        ASSERT_TRUE(table.add(one, one));
        EXPECT_EQ(table.find(other), nullptr);
        ASSERT_TRUE(table.add(other, other));
        EXPECT_EQ(table.find(one), one);
        EXPECT_EQ(table.find(other), other);
    }
}

TEST_F(NameTableTest, StaysAsItIsWithoutMemory) {
    const std::vector<std::string> names = many_names();
    NameTable table;
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_FALSE(table.add(names[0].c_str(), &names[0]));
    EXPECT_EQ(table.find(names[0].c_str()), nullptr);
    fault::fail("calloc", 2, ENOMEM, 1000);
    size_t added = 0;
    while (table.add(names[added].c_str(), &names[added])) {
        added++;
    }
    EXPECT_EQ(added, 32u);
    for (size_t i = 0; i < names.size(); i++) {
        EXPECT_EQ(table.find(names[i].c_str()), i < added ? &names[i] : nullptr);
    }
}
