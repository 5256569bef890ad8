// The upgrade records of the main database for the time of one call.
#ifndef CMPNT_HOTPATCH_RECORD_LOAD_HH
#define CMPNT_HOTPATCH_RECORD_LOAD_HH

#include "libcmpnt_db.h"
#include "list/list.hh"

constexpr int32_t hotpatch_records_not_loaded = -2;

// They are loaded through the hot-patch list, which is empty while the records are used: a callback
// of the host may load and recycle it as it likes. It is empty at the end, too.
class LoadedHotpatchRecords {
public:
    LoadedHotpatchRecords() { list_make_empty(&nodes_); }
    LoadedHotpatchRecords(const LoadedHotpatchRecords &) = delete;
    LoadedHotpatchRecords &operator=(const LoadedHotpatchRecords &) = delete;
    ~LoadedHotpatchRecords();

    // False, and logged in the name of the caller, when they could not be loaded.
    bool load(const char *caller);

    UpgradeRecords records() const { return UpgradeRecords(&nodes_); }

private:
    cmpnt_list_head nodes_;
};

#endif
