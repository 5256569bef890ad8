// Every text is guarded and the records looked at before the library is asked: its 0 does not tell that
// a row was there.
#include "record_writes.hh"

#include <stdio.h>

#include "confirm.hh"
#include "guard.hh"
#include "history.hh"
#include "main_database.hh"
#include "states.hh"

namespace cmpntctl {
namespace {

enum { insert = 2, delete_patch = 3, set_patch_state = 5, set_package_state = 12 };

constexpr size_t name_length = CMPNT_PATCH_NAME_SIZE - 1;
constexpr size_t version_length = CMPNT_VERSION_SIZE - 1;

// SMU kinds in op_flag.
enum { kind_cold = 0x01, kind_app = 0x08, kind_hot = 0x20 };
enum { type_single = 1 };

template <class Work>
void with_history(const char *operation, const Json &details, Work work) {
    try {
        work();
    } catch (const Failure &failure) {
        record_history(operation, details, failure.code());
        throw;
    }
    record_history(operation, details, ExitCode::done);
}

void guard_patch(const std::string &patch) { guard_name("the patch name", patch, name_length); }

// How many records there are of the patch; of one package, when it is given.
int count_records(const Session &session, const std::string &patch, const std::string &package) {
    std::string select = "select count(*) from pkg_upgrade_table where patch_name = ?";
    std::vector<std::string> values = {patch};
    if (!package.empty()) {
        select += " and pkg_name = ?";
        values.push_back(package);
    }
    int count = 0;
    read_rows(session, select, values,
              [&count](sqlite3_stmt *row) { count = sqlite3_column_int(row, 0); });
    return count;
}

int require_records(const Session &session, const std::string &patch, const std::string &package) {
    const int count = count_records(session, patch, package);
    if (count == 0) {
        throw Failure(ExitCode::nothing,
                      "no record has the patch " + patch +
                          (package.empty() ? "" : " with the package " + package),
                      "See which there are: cmpntctl list.");
    }
    return count;
}

std::string records(int count) {
    return std::to_string(count) + (count == 1 ? " record" : " records");
}

void finish_write(Session &session, const char *command, const std::string &patch, int count,
                  const std::string &done) {
    Report report;
    report.text = done + "\n";
    report.data = {{"patch_name", patch}, {"records", count}};
    finish(session, command, report);
}

void guard_record(const NewRecord &record) {
    guard_patch(record.patch);
    guard_name("the package name", record.package, name_length);
    guard_name("the version", record.version, version_length);
    if (!record.last_version.empty()) {
        guard_name("the last version", record.last_version, version_length);
    }
    if (!record.file.empty()) {
        guard_path("the package file", record.file);
    }
    if (!record.patch_version.empty()) {
        guard_name("the patch version", record.patch_version, version_length);
    }
    guard_text("the description", record.description, sizeof(cmpnt_pkg_record::description) - 1);
    guard_text("the time", record.time, sizeof(cmpnt_pkg_record::effective_time) - 1);
}

cmpnt_db_request request_for(const NewRecord &record) {
    cmpnt_db_request request = {};
    request.table = CMPNT_PKG_UPGRADE_TABLE;
    const int32_t kinds = (record.is_cold ? kind_cold : 0) | (record.is_app ? kind_app : 0) |
                          (record.is_hot ? kind_hot : 0);
    set_upgrade_db_value(&request.record, record.patch.c_str(), record.package.c_str(),
                         record.file.c_str(), record.version.c_str(), record.last_version.c_str(),
                         state_code(record.state), record.card_id, 0, kinds,
                         record.description.c_str());
    cmpnt_single_patch_value patch = {};
    snprintf(patch.patch_ver, sizeof(patch.patch_ver), "%s", record.patch_version.c_str());
    snprintf(patch.effective_time, sizeof(patch.effective_time), "%s", record.time.c_str());
    patch.patch_size = record.patch_size;
    patch.patch_type = record.is_single ? type_single : 0;
    set_single_patch_db_value(&request.record, &patch);
    return request;
}

}  // namespace

void run_record_add(Session &session, const NewRecord &record) {
    guard_record(record);
    cmpnt_db_request request = request_for(record);
    if (count_records(session, record.patch, record.package) != 0) {
        throw Failure(
            ExitCode::failed,
            "there is a record of " + record.patch + " with " + record.package + " already",
            "Records are not rewritten: cmpntctl record delete " + record.patch +
                " first, or change its state: cmpntctl record state.");
    }
    with_history("record add", {{"patch_name", record.patch}, {"pkg_name", record.package}},
                 [&] { write_record(session, request, insert, "the record cannot be added"); });
    finish_write(session, "record add", record.patch, 1,
                 "added " + record.package + " " + record.version + " of " + record.patch);
}

void run_record_state(Session &session, const std::string &patch, const std::string &state,
                      const std::string &package) {
    guard_patch(patch);
    if (!package.empty()) {
        guard_name("the package name", package, name_length);
    }
    const int32_t code = state_code(state);
    const int count = require_records(session, patch, package);
    cmpnt_db_request request = {};
    request.table = CMPNT_PKG_UPGRADE_TABLE;
    set_upgrade_db_value(&request.record, patch.c_str(), package.c_str(), nullptr, nullptr, nullptr,
                         code, 0, 0, 0, nullptr);
    const Json details = {
        {"patch_name", patch}, {"pkg_name", package}, {"pkg_state_name", state_word(code)}};
    with_history("record state", details, [&] {
        write_record(session, request, package.empty() ? set_patch_state : set_package_state,
                     "the state cannot be set");
    });
    finish_write(session, "record state", patch, count,
                 records(count) + " of " + patch + " set to " + state_word(code));
}

void run_record_delete(Session &session, const std::string &patch) {
    guard_patch(patch);
    const int count = require_records(session, patch, "");
    confirm(session, "Delete " + records(count) + " of " + patch + "?");
    cmpnt_db_request request = {};
    request.table = CMPNT_PKG_UPGRADE_TABLE;
    set_upgrade_db_value(&request.record, patch.c_str(), nullptr, nullptr, nullptr, nullptr, 0, 0,
                         0, 0, nullptr);
    with_history("record delete", {{"patch_name", patch}}, [&] {
        write_record(session, request, delete_patch, "the records cannot be deleted");
    });
    finish_write(session, "record delete", patch, count,
                 "deleted " + records(count) + " of " + patch);
}

void run_record_time(Session &session, const std::string &patch, const std::string &time) {
    guard_patch(patch);
    guard_text("the time", time, sizeof(cmpnt_pkg_record::effective_time) - 1);
    const int count = require_records(session, patch, "");
    wait_for_lock(session);
    with_history("record time", {{"patch_name", patch}, {"effective_time", time}}, [&] {
        const int32_t result = time == "now" ? cmpnt_update_active_time(patch.c_str())
                               : time.empty()
                                   ? cmpnt_update_deactive_time(patch.c_str())
                                   : cmpnt_update_time_by_patch(patch.c_str(), time.c_str());
        if (result != 0) {
            throw library_failure("the time cannot be set");
        }
    });
    finish_write(session, "record time", patch, count,
                 (time.empty() ? "cleared the time of " : "set the time of ") + records(count));
}

}  // namespace cmpntctl
