// The one way into the database for changes: what each operation code does.
#include "common/log.hh"
#include "db/connection.hh"
#include "db/write.hh"

namespace {

enum class Step { nothing, insert, update, delete_by_name, delete_record, test, report_absence };

// What a failed action is reported as.
enum class Failure {
    insert,
    update,
    delete_by_name,
    delete_record,
    test,
    absence,
    sync_insert,
    sync_update,
    time,
    last_patch
};

struct Action {
    Step step;
    UpdateForm update;
    DeleteForm deletion;
    Failure failure;
};

// What a code does where the row is there, and where it is not.
struct Operation {
    int32_t code;
    Action present;
    Action absent;
};

constexpr Action plain(Step step, Failure failure) { return {step, {}, {}, failure}; }
constexpr Action updating(UpdateForm form, Failure failure = Failure::update) {
    return {Step::update, form, {}, failure};
}
constexpr Action deleting(DeleteForm form) {
    return {Step::delete_record, {}, form, Failure::delete_record};
}

constexpr Action nothing = plain(Step::nothing, Failure::absence);
constexpr Action inserting = plain(Step::insert, Failure::insert);
constexpr Action testing = plain(Step::test, Failure::test);

constexpr Operation operations[] = {
    {write_insert, nothing, inserting},
    {write_row, updating(UpdateForm::row), inserting},
    {write_delete_by_name, plain(Step::delete_by_name, Failure::delete_by_name), nothing},
    {write_last_version, updating(UpdateForm::last_version), nothing},
    {write_state, updating(UpdateForm::state), nothing},
    {write_row_by_path, updating(UpdateForm::row), inserting},
    {write_cur_flag_of_package_in_patch, updating(UpdateForm::cur_flag_of_package_in_patch),
     nothing},
    {write_cur_flag_of_patch, updating(UpdateForm::cur_flag_of_patch), nothing},
    {write_cur_flag_of_package, updating(UpdateForm::cur_flag_of_package), nothing},
    {write_cur_flag_of_version, updating(UpdateForm::cur_flag_of_version), nothing},
    {write_test_pkg_name, testing, testing},
    {write_state_of_package_in_patch, updating(UpdateForm::state_of_package_in_patch),
     plain(Step::report_absence, Failure::absence)},
    {write_delete_record, deleting(DeleteForm::name), nothing},
    {write_delete_record_by_path, deleting(DeleteForm::patch_and_path), nothing},
    {write_path, updating(UpdateForm::path), updating(UpdateForm::path)},
    {write_op_flag_of_patch, updating(UpdateForm::op_flag_of_patch), nothing},
    {write_op_flag_of_package_in_patch, updating(UpdateForm::op_flag_of_package_in_patch), nothing},
    {write_test_package_name, testing, testing},
    {write_test_row, testing, testing},
    {write_card_id_of_all, updating(UpdateForm::card_id_of_all),
     updating(UpdateForm::card_id_of_all)},
    {write_sync_flag, updating(UpdateForm::sync_flag, Failure::sync_update),
     plain(Step::insert, Failure::sync_insert)},
    {write_delete_sync, deleting(DeleteForm::sync_id), nothing},
    {write_effective_time, updating(UpdateForm::effective_time, Failure::time), nothing},
    {write_last_patch, updating(UpdateForm::last_patch, Failure::last_patch), nothing},
    {write_target_pkg_path, updating(UpdateForm::target_pkg_path), nothing},
};

// Null for a code that does nothing.
const Operation *find_operation(int32_t code) {
    for (const Operation &operation : operations) {
        if (operation.code == code) {
            return &operation;
        }
    }
    return nullptr;
}

int32_t act(sqlite3 *db, cmpnt_db_request *request, const Action &action) {
    switch (action.step) {
        case Step::insert:
            return insert_pkg_info_table(db, request, 1);
        case Step::update:
            return update_pkg_info_table(db, request, action.update);
        case Step::delete_by_name:
            return del_pkg_info_table(db, request);
        case Step::delete_record:
            return delete_table_record_from_db(db, request, action.deletion);
        case Step::test:
            return pkg_name_is_exist_in_db(db, request, &request->exist);
        case Step::report_absence:
            return -1;
        default:
            return 0;
    }
}

// Messages stand where they are logged from, for the system log takes their formats.
void report(const char *function, Failure failure, const cmpnt_pkg_record &record) {
    switch (failure) {
        case Failure::insert:
            CMPNT_LOG_AS(log_error, function, "insert pkg info table fail.\n");
            break;
        case Failure::update:
            CMPNT_LOG_AS(log_error, function, "update pkg info table fail.\n");
            break;
        case Failure::delete_by_name:
            CMPNT_LOG_AS(log_error, function, "del pkg info table fail.\n");
            break;
        case Failure::delete_record:
            CMPNT_LOG_AS(log_error, function, "delete_table_record_from_db fail.\n");
            break;
        case Failure::test:
            CMPNT_LOG_AS(log_error, function, "pkg_name_is_exist_in_db fail.\n");
            break;
        case Failure::absence:
            CMPNT_LOG_AS(log_error, function, "patch_name(%s), pkg_name(%s) is not exist in db.\n",
                         record.patch_name, record.pkg_name);
            break;
        case Failure::sync_insert:
            CMPNT_LOG_AS(log_error, function, "insert server sync table fail.\n");
            break;
        case Failure::sync_update:
            CMPNT_LOG_AS(log_error, function, "update server sync flag fail.\n");
            break;
        case Failure::time:
            CMPNT_LOG_AS(log_error, function, "update time fail.\n");
            break;
        case Failure::last_patch:
            CMPNT_LOG_AS(log_error, function, "update last patch fail.\n");
            break;
    }
}

}  // namespace

int32_t operate_pkg_info_table(sqlite3 *db, cmpnt_db_request *request, int32_t command,
                               int32_t exists) {
    const Operation *operation = find_operation(command);
    if (operation == nullptr) {
        return 0;
    }
    const Action &action = exists == 1 ? operation->present : operation->absent;
    if (act(db, request, action) == 0) {
        return 0;
    }
    report(__func__, action.failure, request->record);
    return -1;
}

int32_t cmpnt_operate_pkg_database(cmpnt_db_request *req, int32_t cmd) {
    if (req == nullptr) {
        CMPNT_LOG(log_error, "input param is null.\n");
        return -1;
    }
    DatabaseExchange exchange;
    if (exchange.begin(req->db_type, __func__) != 0) {
        return -1;
    }
    int32_t exists = 0;
    int32_t result = -1;
    if (pkg_name_is_exist_in_db(exchange.db(), req, &exists) != 0) {
        CMPNT_LOG(log_error, "pkg_name_is_exist_in_db fail.\n");
    } else if (operate_pkg_info_table(exchange.db(), req, cmd, exists) != 0) {
        CMPNT_LOG(log_error, "operate_pkg_info_table fail.\n");
    } else {
        result = 0;
    }
    const int closed = exchange.close();
    if (closed != SQLITE_OK) {
        CMPNT_LOG(log_error, "sqlite close fail ret(%d).\n", closed);
        return -1;
    }
    // Still under the lock, with the file closed: the copy is of one moment.
    if (req->db_type == CMPNT_DB_MAIN && req->table == CMPNT_PKG_UPGRADE_TABLE) {
        cmpnt_backup_sqlite_db_to_data();
    }
    return result;
}
