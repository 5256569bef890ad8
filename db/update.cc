// Updates: each form sets one field of the rows that it names, or most of a row.
#include <stdio.h>

#include "db/write.hh"

namespace {

// How the statement of a form is worded.
enum class Shape {
    number_everywhere,
    number_where_number,
    number_where_text,
    number_where_two_texts,
    number_where_two_texts_unless_installed,
    text_where_text,
    text_where_two_texts
};

struct FieldUpdate {
    UpdateForm form;
    int32_t table;
    Shape shape;
    Field value;
    Field first;
    Field second;
};

constexpr FieldUpdate field_updates[] = {
    {UpdateForm::state, CMPNT_PACKAGE_INFO_TABLE, Shape::number_where_text, field::package_state,
     field::package_name, field::none},
    {UpdateForm::state, CMPNT_PKG_UPGRADE_TABLE, Shape::number_where_text, field::pkg_state,
     field::patch_name, field::none},
    {UpdateForm::cur_flag_of_package_in_patch, CMPNT_PKG_UPGRADE_TABLE,
     Shape::number_where_two_texts, field::cur_flag, field::patch_name, field::pkg_name},
    {UpdateForm::cur_flag_of_patch, CMPNT_PKG_UPGRADE_TABLE, Shape::number_where_text,
     field::cur_flag, field::patch_name, field::none},
    {UpdateForm::cur_flag_of_package, CMPNT_PKG_UPGRADE_TABLE, Shape::number_where_text,
     field::cur_flag, field::pkg_name, field::none},
    {UpdateForm::cur_flag_of_version, CMPNT_PKG_UPGRADE_TABLE,
     Shape::number_where_two_texts_unless_installed, field::cur_flag, field::pkg_name,
     field::cur_version},
    {UpdateForm::state_of_package_in_patch, CMPNT_PKG_UPGRADE_TABLE, Shape::number_where_two_texts,
     field::pkg_state, field::patch_name, field::pkg_name},
    {UpdateForm::last_version, CMPNT_PKG_UPGRADE_TABLE, Shape::text_where_two_texts,
     field::last_version, field::patch_name, field::pkg_name},
    {UpdateForm::path, CMPNT_PKG_UPGRADE_TABLE, Shape::text_where_two_texts, field::cur_pkg_path,
     field::patch_name, field::pkg_name},
    {UpdateForm::op_flag_of_patch, CMPNT_PKG_UPGRADE_TABLE, Shape::number_where_text,
     field::op_flag, field::patch_name, field::none},
    {UpdateForm::op_flag_of_package_in_patch, CMPNT_PKG_UPGRADE_TABLE,
     Shape::number_where_two_texts, field::op_flag, field::patch_name, field::pkg_name},
    {UpdateForm::card_id_of_all, CMPNT_PKG_UPGRADE_TABLE, Shape::number_everywhere, field::card_id,
     field::none, field::none},
    {UpdateForm::sync_flag, CMPNT_SERVER_TABLE, Shape::number_where_number, field::sync_flag,
     field::sync_id, field::none},
    {UpdateForm::effective_time, CMPNT_PKG_UPGRADE_TABLE, Shape::text_where_text,
     field::effective_time, field::patch_name, field::none},
    {UpdateForm::last_patch, CMPNT_PKG_UPGRADE_TABLE, Shape::text_where_text, field::last_patch,
     field::patch_name, field::none},
    {UpdateForm::target_pkg_path, CMPNT_PKG_UPGRADE_TABLE, Shape::text_where_two_texts,
     field::hotpatch_target_pkg_path, field::patch_name, field::pkg_name},
};

void format_number_update(char (&sql)[statement_size], const FieldUpdate &update,
                          const cmpnt_db_request &request) {
    const char *table = table_name(update.table);
    const char *value = update.value.column;
    const int32_t number = update.value.number(request);
    const Field &first = update.first;
    const Field &second = update.second;
    switch (update.shape) {
        case Shape::number_everywhere:
            snprintf(sql, sizeof(sql), "update %s set %s = %d", table, value, number);
            break;
        case Shape::number_where_number:
            snprintf(sql, sizeof(sql), "update %s set %s = %d where %s = '%d'", table, value,
                     number, first.column, first.number(request));
            break;
        case Shape::number_where_text:
            snprintf(sql, sizeof(sql), "update %s set %s = %d where %s = '%s'", table, value,
                     number, first.column, first.text(request));
            break;
        case Shape::number_where_two_texts:
            snprintf(sql, sizeof(sql), "update %s set %s = %d where %s = '%s' and %s = '%s'", table,
                     value, number, first.column, first.text(request), second.column,
                     second.text(request));
            break;
        default:
            snprintf(sql, sizeof(sql),
                     "update %s set %s = %d where %s = '%s' and %s = '%s' and %s != '%d'", table,
                     value, number, first.column, first.text(request), second.column,
                     second.text(request), column::pkg_state, CMPNT_STATE_INSTALLED);
            break;
    }
}

void format_text_update(char (&sql)[statement_size], const FieldUpdate &update,
                        const cmpnt_db_request &request) {
    const char *table = table_name(update.table);
    if (update.shape == Shape::text_where_text) {
        snprintf(sql, sizeof(sql), "update %s set %s = '%s' where %s = '%s'", table,
                 update.value.column, update.value.text(request), update.first.column,
                 update.first.text(request));
    } else {
        snprintf(sql, sizeof(sql), "update %s set %s = '%s' where %s = '%s' and %s = '%s'", table,
                 update.value.column, update.value.text(request), update.first.column,
                 update.first.text(request), update.second.column, update.second.text(request));
    }
}

void format_field_update(char (&sql)[statement_size], const cmpnt_db_request &request,
                         UpdateForm form) {
    for (const FieldUpdate &update : field_updates) {
        if (update.form != form || update.table != request.table) {
            continue;
        }
        if (update.shape == Shape::text_where_text || update.shape == Shape::text_where_two_texts) {
            format_text_update(sql, update, request);
        } else {
            format_number_update(sql, update, request);
        }
        return;
    }
}

void format_base_row(char (&sql)[statement_size], const cmpnt_base_pkg_record &base) {
    snprintf(sql, sizeof(sql), "update %s set %s = '%s', %s = %d where %s = '%s'",
             table_name(CMPNT_PACKAGE_INFO_TABLE), column::current_version, base.current_version,
             column::package_state, base.package_state, column::package_name, base.package_name);
}

// The comma before "where" makes SQLite refuse this statement: an upgrade record that is there is
// not overwritten, and whoever tries is told.
void format_upgrade_row(char (&sql)[statement_size], const cmpnt_pkg_record &row) {
    snprintf(
        sql, sizeof(sql),
        "update %s set %s = '%s', %s = '%s', %s = '%s',                 %s = '%d', %s = '%d', "
        "%s = '%d', %s = '%d', %s = '%s', %s = '%s', %s = '%s',                 %s = '%s', "
        "%s = '%s', %s = '%d', %s = '%d', %s = '%d', %s = '%s', %s = '%s',                 "
        "%s = '%s', %s = '%s', where %s = '%s' and %s = '%s'",
        table_name(CMPNT_PKG_UPGRADE_TABLE), column::pkg_name, row.pkg_name, column::cur_version,
        row.cur_version, column::last_version, row.last_version, column::pkg_state, row.pkg_state,
        column::card_id, row.card_id, column::cur_flag, row.cur_flag, column::op_flag, row.op_flag,
        column::description, row.description, column::patch_ver, row.patch_ver, column::patch_id,
        row.patch_id, column::effective_time, row.effective_time, column::last_patch,
        row.last_patch, column::patch_size, row.patch_size, column::patch_type, row.patch_type,
        column::patch_order, row.patch_order, column::hotpatch_file, row.hotpatch_file,
        column::hotpatch_target, row.hotpatch_target, column::hotpatch_target_path,
        row.hotpatch_target_path, column::hotpatch_target_pkg_path, row.hotpatch_target_pkg_path,
        column::patch_name, row.patch_name, column::cur_pkg_path, row.cur_pkg_path);
}

void format_auto_sync_row(char (&sql)[statement_size], const cmpnt_pkg_record &row) {
    snprintf(sql, sizeof(sql),
             "update %s set %s = '%s', %s = '%s', %s = '%s', %s = '%s',         %s = '%d', "
             "%s = '%d', %s = '%d', %s = '%d', %s = '%s', %s = '%s', %s = '%s',         %s = '%s', "
             "%s = '%s', %s = '%d', %s = '%d', %s = '%d' where %s = '%s'",
             table_name(CMPNT_AUTO_SYNC_TABLE), column::pkg_name, row.pkg_name,
             column::cur_pkg_path, row.cur_pkg_path, column::cur_version, row.cur_version,
             column::last_version, row.last_version, column::pkg_state, row.pkg_state,
             column::card_id, row.card_id, column::cur_flag, row.cur_flag, column::op_flag,
             row.op_flag, column::description, row.description, column::patch_ver, row.patch_ver,
             column::patch_id, row.patch_id, column::effective_time, row.effective_time,
             column::last_patch, row.last_patch, column::patch_size, row.patch_size,
             column::patch_type, row.patch_type, column::patch_order, row.patch_order,
             column::patch_name, row.patch_name);
}

void format_row_update(char (&sql)[statement_size], const cmpnt_db_request &request) {
    switch (request.table) {
        case CMPNT_PACKAGE_INFO_TABLE:
            format_base_row(sql, request.base);
            break;
        case CMPNT_PKG_UPGRADE_TABLE:
            format_upgrade_row(sql, request.record);
            break;
        case CMPNT_AUTO_SYNC_TABLE:
            format_auto_sync_row(sql, request.record);
            break;
        default:
            break;
    }
}

}  // namespace

int32_t update_pkg_info_table(sqlite3 *db, const cmpnt_db_request *request, UpdateForm form) {
    char sql[statement_size] = {};
    if (form == UpdateForm::row) {
        format_row_update(sql, *request);
    } else {
        format_field_update(sql, *request, form);
    }
    return cmpnt_sqlite3_exec(db, sql);
}
