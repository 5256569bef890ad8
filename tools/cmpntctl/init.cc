// The command "init": the tables that are missing, and nothing else.
#include <unistd.h>

#include <vector>

#include "history.hh"
#include "libcmpnt_db.h"
#include "main_database.hh"
#include "read_only_database.hh"
#include "record_writes.hh"

namespace cmpntctl {
namespace {

constexpr char server_folder[] = "/opkg/server";

struct Place {
    int32_t file;
    std::string path;
    int32_t table;
    std::string name;
};

std::string temporary_folder() {
    char folder[CMPNT_PATH_SIZE] = "";
    if (cmpnt_get_tmpdir(folder, sizeof(folder)) == nullptr) {
        throw Failure(ExitCode::usage, "TMPDIR is too long", "Set it to a shorter path.");
    }
    return folder;
}

std::vector<Place> all_places() {
    const std::string server = temporary_folder() + server_folder + "/.cmpnt_server.db3";
    return {{CMPNT_DB_MAIN, main_database, CMPNT_PACKAGE_INFO_TABLE, "package_info_table"},
            {CMPNT_DB_MAIN, main_database, CMPNT_PKG_UPGRADE_TABLE, "pkg_upgrade_table"},
            {CMPNT_DB_SERVER, server, CMPNT_SERVER_TABLE, "server_table"},
            {CMPNT_DB_AUTO_SYNC, auto_sync_database, CMPNT_AUTO_SYNC_TABLE, "auto_sync_table"}};
}

bool has_table(const std::string &path, const std::string &name) {
    if (access(path.c_str(), F_OK) != 0) {
        return false;
    }
    try {
        ReadOnlyDatabase database(path);
        return !database
                    .rows("select 1 from sqlite_master where type = 'table' and name = ?", {name})
                    .empty();
    } catch (const SqliteError &error) {
        throw Failure(ExitCode::damaged, path + ": " + error.what(),
                      "See what is damaged: cmpntctl db check.");
    }
}

// The next write would copy the empty main file over the backup.
void spare_backup() {
    if (!has_table(main_database, "pkg_upgrade_table") &&
        has_table(backup_database, "pkg_upgrade_table")) {
        throw Failure(ExitCode::failed,
                      "the main database has lost its records, and the backup has some",
                      std::string("Put the backup in its place: cmpntctl db restore. To start "
                                  "anew, move it away: ") +
                          backup_database + ".");
    }
}

void make_folders() {
    const std::string server = temporary_folder() + server_folder;
    for (const std::string &folder :
         {std::string("/var/lib/opkg"), std::string("/data/cmpnt/opkg"), server}) {
        if (cmpnt_mkdir(folder.c_str()) != 0 || is_dir(folder.c_str()) == 0) {
            throw library_failure("the folder " + folder + " cannot be made");
        }
    }
}

void create(const Session &session, const Place &place) {
    wait_for_lock(session);
    if (cmpnt_create_pkg_table(place.table, place.file) != 0) {
        throw library_failure(place.name + " cannot be made in " + place.path);
    }
}

}  // namespace

void run_init(Session &session) {
    wait_for_lock(session);
    spare_backup();
    make_folders();
    Report report;
    Json created = Json::array();
    for (const Place &place : all_places()) {
        if (!has_table(place.path, place.name)) {
            create(session, place);
            created.push_back({{"table", place.name}, {"file", place.path}});
            report.text += "made " + place.name + " in " + place.path + "\n";
        }
    }
    report.code = created.empty() ? ExitCode::nothing : ExitCode::done;
    if (created.empty()) {
        report.text = "nothing to do: all tables are there\n";
    } else {
        record_history("init", {{"created", created}}, ExitCode::done);
    }
    report.data = {{"created", created}};
    finish(session, "init", report);
}

}  // namespace cmpntctl
