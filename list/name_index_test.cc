#include "list/name_index.hh"

#include <random>

#include "list/upgrade_list.hh"
#include "tests/support/device_test.hh"
#include "tests/support/upgrade_records.hh"

namespace {

struct Names {
    std::string patch;
    std::string pkg;
};

// Few names, so that many are met twice; some differ in their last byte alone, or only behind what a
// record holds.
class NameSource {
public:
    explicit NameSource(unsigned seed) : random_(seed) {}

    Names next() { return {name(), name()}; }

private:
    std::string name() {
        static const std::string stems[] = {"",
                                            "a",
                                            "b",
                                            "ab",
                                            "\xff\x80",
                                            std::string(78, 'n'),
                                            std::string(79, 'n'),
                                            std::string(90, 'n')};
        std::string text = stems[pick(8)];
        for (unsigned letters = pick(3); letters > 0; letters--) {
            text += static_cast<char>('a' + pick(3));
        }
        return text;
    }

    unsigned pick(unsigned count) { return static_cast<unsigned>(random_() % count); }

    std::mt19937 random_;
};

// The walk from the head, in words of its own.
const cmpnt_upgrade_node *walk(const cmpnt_list_head &head, NameKey key, const Names &names) {
    for (cmpnt_list_head *link = head.next; link != &head; link = link->next) {
        const cmpnt_upgrade_value &value = CMPNT_UPGRADE_NODE(link)->value;
        if (names.pkg.substr(0, 79) == value.pkg_name &&
            (key == NameKey::package || names.patch.substr(0, 79) == value.patch_name)) {
            return CMPNT_UPGRADE_NODE(link);
        }
    }
    return nullptr;
}

const cmpnt_upgrade_node *append(const Names &names) {
    const cmpnt_upgrade_value record = upgrade_record(names.patch, names.pkg);
    insert_cmpnt_upgrade_db_to_list(&record, CMPNT_UPGRADE_LIST);
    return CMPNT_UPGRADE_NODE(cmpnt_upgrade_list.prev);
}

}  // namespace

class NameIndexTest : public DeviceTest, public testing::WithParamInterface<NameKey> {
protected:
    // Appends nodes of random names, duplicates included, and compares answers on the way.
    void grow_and_compare(NameIndex &index, int nodes, unsigned seed) {
        NameSource names(seed);
        for (int i = 0; i < nodes; i++) {
            index.add(append(names.next()));
            const Names wanted = names.next();
            ASSERT_EQ(index.find(wanted.patch.c_str(), wanted.pkg.c_str()),
                      walk(cmpnt_upgrade_list, GetParam(), wanted))
                << wanted.patch << " " << wanted.pkg << " after " << i << " nodes";
        }
    }
};

TEST_P(NameIndexTest, AnswersAsTheWalkWhileTheListGrows) {
    for (unsigned seed = 1; seed <= 5; seed++) {
        cmpnt_recycle_upgrade_list(CMPNT_UPGRADE_LIST);
        NameIndex index(&cmpnt_upgrade_list, GetParam());
        grow_and_compare(index, 300, seed);
    }
}

TEST_P(NameIndexTest, KnowsWhatTheListHeldBefore) {
    for (const int held : {0, 1, 7, 8, 9, 33, 200}) {
        cmpnt_recycle_upgrade_list(CMPNT_UPGRADE_LIST);
        NameSource names(static_cast<unsigned>(held));
        for (int i = 0; i < held; i++) {
            append(names.next());
        }
        NameIndex index(&cmpnt_upgrade_list, GetParam());
        for (int i = 0; i < 200; i++) {
            const Names wanted = names.next();
            ASSERT_EQ(index.find(wanted.patch.c_str(), wanted.pkg.c_str()),
                      walk(cmpnt_upgrade_list, GetParam(), wanted));
        }
        grow_and_compare(index, 40, 99);
    }
}

TEST_P(NameIndexTest, AnswersTheSameWithoutMemory) {
    // At its first build, at each growth, and for good.
    for (const int call : {1, 2, 3, 4}) {
        for (const int times : {1, 1000}) {
            cmpnt_recycle_upgrade_list(CMPNT_UPGRADE_LIST);
            NameSource names(7);
            NameIndex index(&cmpnt_upgrade_list, GetParam());
            int allocations = 0;
            for (int i = 0; i < 300; i++) {
                const cmpnt_upgrade_node *node = append(names.next());
                const int before = fault::calls("calloc");
                if (allocations < call) {
                    fault::fail("calloc", call - allocations, ENOMEM, times);
                }
                index.add(node);
                allocations += fault::calls("calloc") - before;
                fault::reset();
                const Names wanted = names.next();
                ASSERT_EQ(index.find(wanted.patch.c_str(), wanted.pkg.c_str()),
                          walk(cmpnt_upgrade_list, GetParam(), wanted));
            }
            EXPECT_EQ(allocations, call);  // it does not try again
        }
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_P(NameIndexTest, TakesNoMemoryForAShortList) {
    NameSource names(3);
    NameIndex index(&cmpnt_upgrade_list, GetParam());
    for (int i = 0; i < 8; i++) {
        const cmpnt_upgrade_node *node = append(names.next());
        const int before = fault::calls("calloc");
        index.add(node);
        EXPECT_EQ(fault::calls("calloc"), before);
    }
}

INSTANTIATE_TEST_SUITE_P(Keys, NameIndexTest,
                         testing::Values(NameKey::patch_and_package, NameKey::package),
                         [](const auto &test) {
                             return test.param == NameKey::package ? "Package" : "PatchAndPackage";
                         });

// Loads: the same records, once by the exported functions and once through an index.
class IndexedLoad : public DeviceTest {
protected:
    void SetUp() override {
        DeviceTest::SetUp();
        NameSource names(11);
        for (int i = 0; i < 150; i++) {
            const Names next = names.next();
            rows.push_back(upgrade_record(next.patch, next.pkg, std::to_string(i)));
        }
    }

    std::vector<cmpnt_upgrade_value> rows;
};

TEST_F(IndexedLoad, AddsWhatTheExportedFunctionAddsAndSaysWhatItSays) {
    for (const cmpnt_upgrade_value &row : rows) {
        EXPECT_EQ(cmpnt_add_upgrade_value_to_list(&row, CMPNT_UPGRADE_LIST), 0);
    }
    const std::vector<std::string> said = trace_messages();
    EXPECT_FALSE(said.empty());
    forget_log();
    NameIndex index(&cmpnt_hp_list, NameKey::patch_and_package);
    for (const cmpnt_upgrade_value &row : rows) {
        EXPECT_EQ(cmpnt_add_upgrade_value_to_list(row, CMPNT_HP_LIST, &index), 0);
    }
    EXPECT_EQ(records_of(cmpnt_hp_list), records_of(cmpnt_upgrade_list));
    EXPECT_EQ(trace_messages(), said);
}

TEST_F(IndexedLoad, AddsByPackageAsTheExportedFunctionDoes) {
    for (const cmpnt_upgrade_value &row : rows) {
        EXPECT_EQ(cmpnt_add_to_upgrade_list_by_pkg_name(&row), 0);
    }
    const std::vector<std::string> said = trace_messages();
    const std::vector<std::string> added = records_of(cmpnt_upgrade_list);
    cmpnt_recycle_upgrade_list(CMPNT_UPGRADE_LIST);
    forget_log();
    NameIndex index(&cmpnt_upgrade_list, NameKey::package);
    for (const cmpnt_upgrade_value &row : rows) {
        EXPECT_EQ(cmpnt_add_to_upgrade_list_by_pkg_name(row, &index), 0);
    }
    EXPECT_EQ(records_of(cmpnt_upgrade_list), added);
    EXPECT_EQ(trace_messages(), said);
}

TEST_F(IndexedLoad, DoesNotTellTheIndexOfANodeThatWasNotMade) {
    NameIndex index(&cmpnt_upgrade_list, NameKey::patch_and_package);
    const cmpnt_upgrade_value row = upgrade_record("smu", "pkg");
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(cmpnt_add_upgrade_value_to_list(row, CMPNT_UPGRADE_LIST, &index), -1);
    EXPECT_TRUE(logged("CMPNT_ERROR", "cmpnt_add_upgrade_value_to_list",
                       "insert_cmpnt_upgrade_db_to_list fail.\n"));
    EXPECT_EQ(cmpnt_add_upgrade_value_to_list(row, CMPNT_UPGRADE_LIST, &index), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 1u);
}
