// A record of a hot patch, with a text of its own in every field that criteria know.
#ifndef CMPNT_TESTS_HOTPATCH_RECORD_HH
#define CMPNT_TESTS_HOTPATCH_RECORD_HH

#include "tests/support/upgrade_records.hh"

inline cmpnt_upgrade_value hotpatch_record(int32_t op_flag = 0x20) {
    cmpnt_upgrade_value record = upgrade_record("SMU", "routed", "2.4.1", "active", "/d/r.deb");
    record.op_flag = op_flag;
    set_text(record.pkg_state_name, "never looked at");
    set_text(record.hotpatch_file, "routed.ko");
    set_text(record.hotpatch_target, "routed;bgpd");
    set_text(record.hotpatch_target_path, "/usr/sbin/routed");
    set_text(record.hotpatch_target_pkg_path, "/cache/routed.ipk");
    return record;
}

#endif
