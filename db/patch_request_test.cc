#include <string.h>

#include "db/write.hh"
#include "tests/support/device_test.hh"

TEST(PatchRequest, NamesThePatchAndNothingElse) {
    cmpnt_db_request expected = {};
    expected.table = CMPNT_AUTO_SYNC_TABLE;
    expected.cmd = write_delete_record;
    expected.db_type = CMPNT_DB_AUTO_SYNC;
    memcpy(expected.record.patch_name, "smu-1", 5);
    const cmpnt_db_request request =
        request_for_patch(CMPNT_AUTO_SYNC_TABLE, write_delete_record, CMPNT_DB_AUTO_SYNC, "smu-1");
    EXPECT_EQ(memcmp(&request, &expected, sizeof(request)), 0);
}
