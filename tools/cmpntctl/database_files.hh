// The database files of the device, and what must be in them.
#ifndef CMPNTCTL_DATABASE_FILES_HH
#define CMPNTCTL_DATABASE_FILES_HH

#include <string>
#include <vector>

namespace cmpntctl {

constexpr char main_database[] = "/var/lib/opkg/cmpnt_upgrade.db3";
constexpr char backup_database[] = "/data/cmpnt/opkg/cmpnt_upgrade_backup.db3";
constexpr char auto_sync_database[] = "/var/lib/opkg/cmpnt_auto_sync.db3";

struct TableLayout {
    std::string name;
    std::vector<std::string> columns;  // "pkg_state integer", in their order
    std::string state;                 // the column of CMPNT_STATE_... codes; empty: none
    std::vector<std::string> key;      // what no two rows share; empty: nothing
    std::string path;                  // the column of package files; empty: none
};

struct DatabaseFile {
    std::string name;  // "main"
    std::string path;
    std::vector<TableLayout> tables;
    bool is_needed;  // without it records are lost
};

DatabaseFile main_file();
DatabaseFile backup_file();
std::vector<DatabaseFile> database_files();  // main, backup, server, auto-sync

}  // namespace cmpntctl

#endif
