#include "list/list_index.hh"

#include <errno.h>
#include <string.h>

#include <deque>
#include <utility>

#include "list/list.hh"
#include "tests/support/device_test.hh"

namespace {

struct TextNode {
    const char *text;
    cmpnt_list_head link;
};

size_t comparisons = 0;

const void *text_of(const cmpnt_list_head *link) { return node_of<TextNode>(link)->text; }

uint32_t hash(const void *text) { return hash_text(static_cast<const char *>(text), SIZE_MAX); }

bool is_same(const void *a, const void *b) {
    comparisons++;
    return strcmp(static_cast<const char *>(a), static_cast<const char *>(b)) == 0;
}

constexpr ListKey by_text = {text_of, hash, is_same};

std::vector<std::string> numbered_names(int count) {
    std::vector<std::string> names;
    for (int i = 0; i < count; i++) {
        names.push_back("/usr/lib/file" + std::to_string(i));
    }
    return names;
}

}  // namespace

class ListIndexTest : public DeviceTest {
protected:
    const cmpnt_list_head *add(const char *text) {
        nodes.push_back({text, {}});
        list_append(&list, &nodes.back().link);
        index.add(&nodes.back().link);
        return &nodes.back().link;
    }

    // Beyond what is walked.
    void lengthen() {
        for (const char *text : {"1", "2", "3", "4", "5", "6", "7", "8", "9"}) {
            add(text);
        }
    }

    cmpnt_list_head list = {&list, &list};
    std::deque<TextNode> nodes;
    ListIndex index{&list, by_text};
};

TEST_F(ListIndexTest, FindsNothingWhenEmpty) {
    EXPECT_EQ(index.find(""), nullptr);
    EXPECT_EQ(index.find("a"), nullptr);
    EXPECT_EQ(fault::calls("calloc"), 0);
}

TEST_F(ListIndexTest, FindsEachOfManyNamesWithoutAWalk) {
    const std::vector<std::string> names = numbered_names(3000);
    for (const std::string &name : names) {
        add(name.c_str());
    }
    comparisons = 0;
    for (size_t i = 0; i < names.size(); i++) {
        EXPECT_EQ(index.find(std::string(names[i]).c_str()), &nodes[i].link);
        EXPECT_EQ(index.find((names[i] + "x").c_str()), nullptr);
    }
    EXPECT_EQ(index.find(""), nullptr);
    EXPECT_LT(comparisons, names.size() + 10);
}

TEST_F(ListIndexTest, KeepsTheFirstOfAName) {
    lengthen();
    const cmpnt_list_head *first = add("");
    for (int i = 0; i < 1000; i++) {
        add("");  // takes no room
    }
    EXPECT_EQ(index.find(""), first);
    EXPECT_EQ(fault::calls("calloc"), 1);
}

TEST_F(ListIndexTest, TellsNamesOfTheSameHashApart) {
    lengthen();
    const std::pair<const char *, const char *> pairs[] = {
        {"costarring", "liquid"}, {"declinate", "macallums"}, {"altarage", "zinke"}};
    for (const auto &[one, other] : pairs) {
        ASSERT_EQ(hash(one), hash(other));
        const cmpnt_list_head *first = add(one);
        EXPECT_EQ(index.find(other), nullptr);
        const cmpnt_list_head *second = add(other);
        EXPECT_EQ(index.find(one), first);
        EXPECT_EQ(index.find(other), second);
    }
}

// At most half full: of 64 slots, 32 are taken before there have to be more.
TEST_F(ListIndexTest, WalksForGoodWithoutMemory) {
    const std::vector<std::string> names = numbered_names(100);
    fault::fail("calloc", 2, ENOMEM);
    for (size_t i = 0; i < names.size(); i++) {
        add(names[i].c_str());
        EXPECT_EQ(fault::calls("calloc"), i < 8 ? 0 : i < 32 ? 1 : 2);
        for (size_t k = 0; k < names.size(); k++) {
            ASSERT_EQ(index.find(names[k].c_str()), k <= i ? &nodes[k].link : nullptr);
        }
    }
}
