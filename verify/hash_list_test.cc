#include "verify/hash_list.hh"

#include <errno.h>
#include <stdlib.h>

#include "tests/support/device_test.hh"
#include "tests/support/upgrade_records.hh"
#include "tests/support/verification.hh"

class HashList : public DeviceTest {
protected:
    static testing::AssertionResult says(const std::string &message) {
        return logged("CMPNT_ERROR", "cmpnt_add_hash_verify_list", message);
    }

    static std::string numbered(int i) { return "file" + std::to_string(i); }

    static void list_numbered(int first, int end, const std::string &hash = "d") {
        for (int i = first; i < end; i++) {
            list_hash(numbered(i), hash + std::to_string(i));
        }
    }

    // Appends a node to the list and tells the index, as a load does.
    static HashTexts add(HashIndex &index, const std::string &name, const std::string &hash) {
        char *name_text = strdup(name.c_str());
        char *hash_text = strdup(hash.c_str());
        const HashTexts texts = cmpnt_add_hash_verify_list(name_text, hash_text, &index);
        if (texts != HashTexts::taken) {
            free(name_text);
            free(hash_text);
        }
        return texts;
    }
};

TEST_F(HashList, KeepsTheOrderInWhichDigestsAreAdded) {
    list_hash("b", "d1");
    list_hash("a", "d2");
    list_hash("", "");
    EXPECT_EQ(listed_hashes(), (std::vector<std::string>{"b d1", "a d2", " "}));
    EXPECT_TRUE(is_well_linked(hash_verify_list));
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(HashList, TakesTheTextsThemselves) {
    char *name = strdup("a");
    char *hash = strdup("d1");
    EXPECT_EQ(cmpnt_add_hash_verify_list(name, hash), 0);
    EXPECT_EQ(CMPNT_HASH_NODE(hash_verify_list.next)->name, name);
    EXPECT_EQ(CMPNT_HASH_NODE(hash_verify_list.next)->hash_value, hash);
}

TEST_F(HashList, KeepsTheFirstDigestOfANameAndLeavesTheSecondToItsOwner) {
    list_hash("a", "d1");
    char name[] = "a";
    char hash[] = "d2";
    EXPECT_EQ(cmpnt_add_hash_verify_list(name, hash), 0);
    EXPECT_EQ(listed_hashes(), std::vector<std::string>{"a d1"});
    EXPECT_STREQ(name, "a");
    EXPECT_STREQ(hash, "d2");
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(HashList, TellsNamesApartByEveryLetter) {
    for (const char *name : {"a", "A", "ab", "a ", ""}) {
        list_hash(name, "d");
    }
    EXPECT_EQ(listed_hashes().size(), 5u);
}

TEST_F(HashList, RefusesNull) {
    char text[] = "a";
    char message[128];
    const char format[] = "param is null, patch_name(%p), hash_value(%p)\n";
    void *none = nullptr;
    EXPECT_EQ(cmpnt_add_hash_verify_list(nullptr, text), -1);
    snprintf(message, sizeof(message), format, none, static_cast<void *>(text));
    EXPECT_TRUE(says(message));
    EXPECT_EQ(cmpnt_add_hash_verify_list(text, nullptr), -1);
    snprintf(message, sizeof(message), format, static_cast<void *>(text), none);
    EXPECT_TRUE(says(message));
    EXPECT_EQ(hash_verify_list.next, &hash_verify_list);
}

TEST_F(HashList, FailsWithoutMemoryAndTakesNothing) {
    list_hash("a", "d1");
    char name[] = "b";
    char hash[] = "d2";
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(cmpnt_add_hash_verify_list(name, hash), -1);
    EXPECT_TRUE(
        logged("CMPNT_ERROR", "malloc_hash_node", "malloc hash_verify_list_t node failed.\n"));
    EXPECT_TRUE(says("malloc_hash_node failed!\n"));
    EXPECT_EQ(listed_hashes(), std::vector<std::string>{"a d1"});
    EXPECT_TRUE(is_well_linked(hash_verify_list));
}

TEST_F(HashList, IsEmptyAfterItsRecycling) {
    cmpnt_recycle_hash_verify_list();
    EXPECT_EQ(hash_verify_list.next, &hash_verify_list);
    list_numbered(0, 3);
    cmpnt_recycle_hash_verify_list();
    EXPECT_EQ(hash_verify_list.next, &hash_verify_list);
    EXPECT_EQ(hash_verify_list.prev, &hash_verify_list);
    list_numbered(0, 1);
    EXPECT_EQ(listed_hashes(), std::vector<std::string>{"file0 d0"});
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(HashList, IndexTellsWhetherTheTextsWereTaken) {
    HashIndex index;
    EXPECT_EQ(add(index, "a", "d1"), HashTexts::taken);
    EXPECT_EQ(add(index, "a", "d2"), HashTexts::not_taken);
    EXPECT_EQ(cmpnt_add_hash_verify_list(nullptr, nullptr, &index), HashTexts::failed);
    EXPECT_EQ(listed_hashes(), std::vector<std::string>{"a d1"});
}

// Around the length from which on the list is no longer walked, and around that at which the table
// grows.
TEST_F(HashList, IndexAnswersAsAWalkOverAListOfAnyLength) {
    for (int at_first : {0, 1, 7, 8, 9, 10, 31, 32, 33, 200}) {
        cmpnt_recycle_hash_verify_list();
        list_numbered(0, at_first);
        HashIndex index;
        for (int i = 0; i < 300; i++) {
            ASSERT_EQ(add(index, numbered(i), "e"),
                      i < at_first ? HashTexts::not_taken : HashTexts::taken);
            const hash_verify_list_t *node = index.find(numbered(i).c_str());
            ASSERT_NE(node, nullptr);
            ASSERT_EQ(node, find_hash(nullptr, numbered(i).c_str()));
            ASSERT_EQ(index.find(numbered(i + 1).c_str()),
                      find_hash(nullptr, numbered(i + 1).c_str()));
        }
    }
}

TEST_F(HashList, IndexFindsTheFirstOfNodesThatAHostAddedTwice) {
    list_numbered(0, 20);
    hash_verify_list_t second = {};
    char name[] = "file3";
    char hash[] = "other";
    second.name = name;
    second.hash_value = hash;
    second.link = {&hash_verify_list, hash_verify_list.prev};
    hash_verify_list.prev->next = &second.link;
    hash_verify_list.prev = &second.link;
    const HashIndex index;
    EXPECT_STREQ(index.find("file3")->hash_value, "d3");
    hash_verify_list.prev = second.link.prev;
    hash_verify_list.prev->next = &hash_verify_list;
}

TEST_F(HashList, IsWalkedWhenThereIsNoMemoryForAnIndex) {
    list_numbered(0, 20);
    fault::fail("calloc", 1, ENOMEM);
    HashIndex index;
    for (int i = 0; i < 40; i++) {
        EXPECT_EQ(add(index, numbered(i), "e"), i < 20 ? HashTexts::not_taken : HashTexts::taken);
    }
    EXPECT_EQ(listed_hashes().size(), 40u);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(HashList, IsWalkedWhenThereIsNoMemoryForAGrowingIndex) {
    list_numbered(0, 32);
    HashIndex index;
    fault::fail("calloc", 2, ENOMEM);  // the first is for the node
    for (int i = 0; i < 80; i++) {
        EXPECT_EQ(add(index, numbered(i), "e"), i < 32 ? HashTexts::not_taken : HashTexts::taken);
        EXPECT_EQ(index.find(numbered(i).c_str()), find_hash(nullptr, numbered(i).c_str()));
    }
    EXPECT_EQ(listed_hashes().size(), 80u);
    EXPECT_FALSE(exists(trace_path()));
}

TEST_F(HashList, TakesNoMemoryForAnIndexOverFewNodes) {
    list_numbered(0, 8);
    const int before = fault::calls("calloc");
    const HashIndex index;
    EXPECT_NE(index.find("file7"), nullptr);
    EXPECT_EQ(fault::calls("calloc"), before);
}
