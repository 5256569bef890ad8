#include "list/name_index.hh"

#include <string.h>

#include <random>

#include "list/upgrade_list.hh"
#include "tests/support/device_test.hh"
#include "tests/support/upgrade_records.hh"

namespace {

// Few names and SMU ids, so that many are met twice; some names differ in their last byte alone, or
// only behind what a record holds.
class RecordSource {
public:
    explicit RecordSource(unsigned seed) : random_(seed) {}

    cmpnt_upgrade_value next() {
        const std::string patch = name();
        const std::string pkg = name();
        cmpnt_upgrade_value record = upgrade_record(patch, pkg);
        record.card_id = static_cast<int32_t>(pick(4)) - 1;
        record.patch_type = static_cast<int32_t>(pick(3));
        return record;
    }

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
            text += static_cast<char>('a' + pick(26));
        }
        return text;
    }

    unsigned pick(unsigned count) { return static_cast<unsigned>(random_() % count); }

    std::mt19937 random_;
};

// Duplicates, in words of the test's own.
bool are_alike(NameKey key, const cmpnt_upgrade_value &a, const cmpnt_upgrade_value &b) {
    const bool looks_at_patch = key != NameKey::package;
    const bool looks_at_package = key == NameKey::package || key == NameKey::patch_and_package;
    const bool looks_at_id = key == NameKey::smu_id_and_patch;
    return (!looks_at_patch || strcmp(a.patch_name, b.patch_name) == 0) &&
           (!looks_at_package || strcmp(a.pkg_name, b.pkg_name) == 0) &&
           (!looks_at_id || a.card_id == b.card_id);
}

const char *name_of(NameKey key) {
    return key == NameKey::package            ? "Package"
           : key == NameKey::patch            ? "Patch"
           : key == NameKey::smu_id_and_patch ? "SmuIdAndPatch"
                                              : "PatchAndPackage";
}

// The walk from the head.
const cmpnt_upgrade_node *walk(const cmpnt_list_head &head, NameKey key,
                               const cmpnt_upgrade_value &record) {
    for (cmpnt_list_head *link = head.next; link != &head; link = link->next) {
        if (are_alike(key, CMPNT_UPGRADE_NODE(link)->value, record)) {
            return CMPNT_UPGRADE_NODE(link);
        }
    }
    return nullptr;
}

const cmpnt_upgrade_node *append(const cmpnt_upgrade_value &record) {
    insert_cmpnt_upgrade_db_to_list(&record, CMPNT_UPGRADE_LIST);
    return CMPNT_UPGRADE_NODE(cmpnt_upgrade_list.prev);
}

}  // namespace

class NameIndexTest : public DeviceTest, public testing::WithParamInterface<NameKey> {
protected:
    // Appends random nodes, duplicates included, and compares answers on the way.
    void grow_and_compare(NameIndex &index, int nodes, unsigned seed) {
        RecordSource records(seed);
        for (int i = 0; i < nodes; i++) {
            index.add(append(records.next()));
            const cmpnt_upgrade_value wanted = records.next();
            ASSERT_EQ(index.find(wanted), walk(cmpnt_upgrade_list, GetParam(), wanted))
                << wanted.patch_name << " " << wanted.pkg_name << " " << wanted.card_id << " after "
                << i << " nodes";
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
        RecordSource records(static_cast<unsigned>(held));
        for (int i = 0; i < held; i++) {
            append(records.next());
        }
        NameIndex index(&cmpnt_upgrade_list, GetParam());
        for (int i = 0; i < 200; i++) {
            const cmpnt_upgrade_value wanted = records.next();
            ASSERT_EQ(index.find(wanted), walk(cmpnt_upgrade_list, GetParam(), wanted));
        }
        grow_and_compare(index, 40, 99);
    }
}

TEST_P(NameIndexTest, AnswersTheSameWithoutMemory) {
    // At its first build, at each growth, and for good.
    for (const int call : {1, 2, 3, 4}) {
        for (const int times : {1, 1000}) {
            cmpnt_recycle_upgrade_list(CMPNT_UPGRADE_LIST);
            RecordSource records(7);
            NameIndex index(&cmpnt_upgrade_list, GetParam());
            int allocations = 0;
            for (int i = 0; i < 500; i++) {
                const cmpnt_upgrade_node *node = append(records.next());
                const int before = fault::calls("calloc");
                if (allocations < call) {
                    fault::fail("calloc", call - allocations, ENOMEM, times);
                }
                index.add(node);
                allocations += fault::calls("calloc") - before;
                fault::reset();
                const cmpnt_upgrade_value wanted = records.next();
                ASSERT_EQ(index.find(wanted), walk(cmpnt_upgrade_list, GetParam(), wanted));
            }
            EXPECT_EQ(allocations, call);  // it does not try again
        }
    }
    EXPECT_FALSE(exists(trace_path()));
}

TEST_P(NameIndexTest, TakesNoMemoryForAShortList) {
    RecordSource records(3);
    NameIndex index(&cmpnt_upgrade_list, GetParam());
    for (int i = 0; i < 8; i++) {
        const cmpnt_upgrade_node *node = append(records.next());
        const int before = fault::calls("calloc");
        index.add(node);
        EXPECT_EQ(fault::calls("calloc"), before);
    }
}

INSTANTIATE_TEST_SUITE_P(Keys, NameIndexTest,
                         testing::Values(NameKey::patch_and_package, NameKey::package,
                                         NameKey::patch, NameKey::smu_id_and_patch),
                         [](const auto &test) { return name_of(test.param); });

// A load: the exported function, which walks, and what it is with an index.
struct Load {
    const char *name;
    NameKey key;
    int32_t (*walking)(const cmpnt_upgrade_value *record);
    int32_t (*indexed)(const cmpnt_upgrade_value &record, NameIndex *index);
};

const Load loads[] = {
    {"AllToList", NameKey::patch_and_package,
     [](const cmpnt_upgrade_value *record) {
         return cmpnt_add_upgrade_value_to_list(record, CMPNT_UPGRADE_LIST);
     },
     [](const cmpnt_upgrade_value &record, NameIndex *index) {
         return cmpnt_add_upgrade_value_to_list(record, CMPNT_UPGRADE_LIST, index);
     }},
    {"ByPackage", NameKey::package, cmpnt_add_to_upgrade_list_by_pkg_name,
     cmpnt_add_to_upgrade_list_by_pkg_name},
    {"BySmu", NameKey::patch, cmpnt_add_to_list_by_smu, cmpnt_add_to_list_by_smu},
    {"SinglePatches", NameKey::smu_id_and_patch, cmpnt_add_to_list_by_single,
     cmpnt_add_to_list_by_single},
};

class IndexedLoad : public DeviceTest, public testing::WithParamInterface<Load> {};

TEST_P(IndexedLoad, AddsAndSaysWhatTheExportedFunctionDoes) {
    std::vector<cmpnt_upgrade_value> rows;
    RecordSource records(11);
    for (int i = 0; i < 150; i++) {
        rows.push_back(records.next());
        set_text(rows.back().cur_version, std::to_string(i));
    }
    for (const cmpnt_upgrade_value &row : rows) {
        EXPECT_EQ(GetParam().walking(&row), 0);
    }
    const std::vector<std::string> added = records_of(cmpnt_upgrade_list);
    const std::vector<std::string> said = trace_messages();
    EXPECT_GT(added.size(), 8u);
    EXPECT_LT(added.size(), rows.size());
    EXPECT_FALSE(said.empty());
    cmpnt_recycle_upgrade_list(CMPNT_UPGRADE_LIST);
    forget_log();
    NameIndex index(&cmpnt_upgrade_list, GetParam().key);
    for (const cmpnt_upgrade_value &row : rows) {
        EXPECT_EQ(GetParam().indexed(row, &index), 0);
    }
    EXPECT_EQ(records_of(cmpnt_upgrade_list), added);
    EXPECT_EQ(trace_messages(), said);
}

// The list is long already, so that the index no longer walks it.
TEST_P(IndexedLoad, TellsAnIndexThatIsBuiltOfEachNode) {
    RecordSource records(5);
    for (int i = 0; i < 20; i++) {
        append(records.next());
    }
    NameIndex index(&cmpnt_upgrade_list, GetParam().key);
    cmpnt_upgrade_value row = upgrade_record("smu", "pkg");
    row.card_id = 7;
    row.patch_type = 1;
    for (int times = 0; times < 2; times++) {
        EXPECT_EQ(GetParam().indexed(row, &index), 0);
        EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 21u);
    }
}

TEST_P(IndexedLoad, DoesNotTellTheIndexOfANodeThatWasNotMade) {
    NameIndex index(&cmpnt_upgrade_list, GetParam().key);
    cmpnt_upgrade_value row = upgrade_record("smu", "pkg");
    row.card_id = 7;
    row.patch_type = 1;
    fault::fail("calloc", 1, ENOMEM);
    EXPECT_EQ(GetParam().indexed(row, &index), -1);
    EXPECT_TRUE(records_of(cmpnt_upgrade_list).empty());
    EXPECT_EQ(GetParam().indexed(row, &index), 0);
    EXPECT_EQ(GetParam().indexed(row, &index), 0);
    EXPECT_EQ(records_of(cmpnt_upgrade_list).size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(Loads, IndexedLoad, testing::ValuesIn(loads),
                         [](const auto &test) { return test.param.name; });
