// Selects, filtered by the database, whose rows become a table or JSON members named as the columns.
#include "record_rows.hh"

#include "json_text.hh"
#include "main_database.hh"
#include "report.hh"
#include "states.hh"
#include "table.hh"

namespace cmpntctl {
namespace {

const std::vector<std::string> upgrade_columns = {"patch_name",
                                                  "pkg_name",
                                                  "cur_version",
                                                  "last_version",
                                                  "pkg_state",
                                                  "op_flag",
                                                  "patch_type",
                                                  "effective_time",
                                                  "cur_pkg_path",
                                                  "card_id",
                                                  "cur_flag",
                                                  "description",
                                                  "patch_ver",
                                                  "patch_id",
                                                  "last_patch",
                                                  "patch_size",
                                                  "patch_order",
                                                  "hotpatch_file",
                                                  "hotpatch_target",
                                                  "hotpatch_target_path",
                                                  "hotpatch_target_pkg_path",
                                                  "hotpatch_target_md5",
                                                  "hotpatch_target_strip_md5"};
enum UpgradeColumn {
    patch_name,
    pkg_name,
    cur_version,
    last_version,
    pkg_state,
    op_flag,
    patch_type,
    effective_time
};

const std::vector<std::string> base_columns = {"package_name",  "base_version",   "current_version",
                                               "package_state", "package_is_new", "upgrade_count"};
enum BaseColumn {
    package_name,
    base_version,
    current_version,
    package_state,
    package_is_new,
    upgrade_count
};

struct Query {
    std::string select;
    std::vector<std::string> values;
};

std::string joined(const std::vector<std::string> &texts) {
    std::string list;
    for (const std::string &text : texts) {
        list += (list.empty() ? "" : ", ") + text;
    }
    return list;
}

void require(Query &query, const std::string &condition) {
    query.select += (query.select.find(" where ") == std::string::npos ? " where " : " and ");
    query.select += condition;
}

void require_text(Query &query, const std::string &column, const std::string &value) {
    if (!value.empty()) {
        require(query, column + " = ?");
        query.values.push_back(value);
    }
}

void require_states(Query &query, const std::string &column,
                    const std::vector<std::string> &words) {
    std::vector<std::string> codes;
    for (const std::string &word : words) {
        codes.push_back(std::to_string(state_code(word)));
    }
    if (!codes.empty()) {
        require(query, column + " in (" + joined(codes) + ")");
    }
}

Query upgrade_query(const RecordFilter &filter) {
    Query query = {"select " + joined(upgrade_columns) + " from pkg_upgrade_table", {}};
    require_text(query, "patch_name", filter.patch);
    require_text(query, "pkg_name", filter.package);
    require_states(query, "pkg_state", filter.states);
    return query;
}

Query base_query(const RecordFilter &filter) {
    Query query = {"select " + joined(base_columns) + " from package_info_table", {}};
    require_text(query, "package_name", filter.package);
    require_states(query, "package_state", filter.states);
    return query;
}

// --- JSON -------------------------------------------------------------------------

// Rows as JSON text: a hundred thousand of them, kept as objects, would not fit a device.
class JsonRows {
public:
    // The column of the state is followed by its word.
    JsonRows(const std::vector<std::string> &columns, int state_column)
        : state_column_(state_column), state_name_("\"" + columns[state_column] + "_name\":") {
        for (const std::string &column : columns) {
            names_.push_back("\"" + column + "\":");
        }
    }

    void add(sqlite3_stmt *row) {
        json_ += is_empty_ ? "\n{" : ",\n{";
        is_empty_ = false;
        for (int i = 0; i < static_cast<int>(names_.size()); i++) {
            json_ += i == 0 ? "" : ",";
            json_ += names_[static_cast<size_t>(i)];
            add_value(row, i);
            if (i == state_column_) {
                const std::string word = state_word(sqlite3_column_int64(row, i));
                json_ += "," + state_name_;
                append_json_string(json_, word.data(), word.size());
            }
        }
        json_ += '}';
    }

    // The member with all of them.
    std::string take_member() { return std::move(json_ += "\n]"); }
    bool empty() const { return is_empty_; }

private:
    void add_value(sqlite3_stmt *row, int column) {
        const int type = sqlite3_column_type(row, column);
        if (type == SQLITE_NULL) {
            json_ += "null";
            return;
        }
        const char *text = reinterpret_cast<const char *>(sqlite3_column_text(row, column));
        const size_t size = static_cast<size_t>(sqlite3_column_bytes(row, column));
        if (type == SQLITE_INTEGER) {
            json_.append(text, size);
        } else {
            append_json_string(json_, text, size);
        }
    }

    int state_column_;
    std::string state_name_;
    std::vector<std::string> names_;
    std::string json_ = "\"records\": [";
    bool is_empty_ = true;
};

ExitCode code_for(bool is_empty) { return is_empty ? ExitCode::nothing : ExitCode::done; }

void finish_as_json(Session &session, const char *command, const Query &query, JsonRows &rows) {
    read_rows(session, query.select, query.values, [&rows](sqlite3_stmt *row) { rows.add(row); });
    finish_with_members(session, command, rows.take_member(), code_for(rows.empty()));
}

// --- for people -------------------------------------------------------------------

std::string kind_of(sqlite3_stmt *row) {
    const int32_t flags = sqlite3_column_int(row, op_flag);
    std::string kinds;
    const auto add = [&kinds](bool is_one, const char *kind) {
        kinds += is_one ? std::string(kinds.empty() ? "" : ",") + kind : "";
    };
    add(cmpnt_smu_is_cold(flags) == 1, "cold");
    add(cmpnt_smu_is_app(flags) == 1, "app");
    add(cmpnt_smu_is_hp(flags) == 1, "hot");
    add(sqlite3_column_int(row, patch_type) == 1, "single");
    return kinds.empty() ? "-" : kinds;
}

std::string or_dash(std::string text) { return text.empty() ? "-" : text; }

void finish_as_table(Session &session, const char *command, const Table &table,
                     const std::string &nothing) {
    Report report;
    report.code = code_for(table.empty());
    report.text = table.empty() ? nothing + "\n" : table.text(session);
    finish(session, command, report);
}

std::string described(sqlite3_stmt *row) {
    const std::vector<std::string> &names = upgrade_columns;
    std::string text;
    for (size_t i = 0; i < names.size(); i++) {
        std::string value = printable(column_text(row, static_cast<int>(i)));
        if (value.empty()) {
            continue;
        }
        if (i == pkg_state) {
            value += " (" + state_word(sqlite3_column_int64(row, pkg_state)) + ")";
        } else if (i == op_flag) {
            value += " (" + kind_of(row) + ")";
        }
        text += names[i] + std::string(27 - names[i].size(), ' ') + value + "\n";
    }
    return text;
}

Failure no_patch(const std::string &patch) {
    return Failure(ExitCode::nothing, "no record has the patch \"" + printable(patch) + "\"",
                   "See which there are: cmpntctl list.");
}

}  // namespace

void run_list(Session &session, const RecordFilter &filter) {
    const Query query = upgrade_query(filter);
    if (session.json) {
        JsonRows rows(upgrade_columns, pkg_state);
        finish_as_json(session, "list", query, rows);
        return;
    }
    Table table({"PATCH", "PACKAGE", "VERSION", "STATE", "KIND", "EFFECTIVE SINCE"});
    read_rows(session, query.select, query.values, [&table](sqlite3_stmt *row) {
        table.add({column_text(row, patch_name), column_text(row, pkg_name),
                   column_text(row, cur_version), state_word(sqlite3_column_int64(row, pkg_state)),
                   kind_of(row), or_dash(column_text(row, effective_time))});
    });
    finish_as_table(session, "list", table, "no upgrade records");
}

void run_packages(Session &session, const RecordFilter &filter) {
    const Query query = base_query(filter);
    if (session.json) {
        JsonRows rows(base_columns, package_state);
        finish_as_json(session, "packages", query, rows);
        return;
    }
    Table table({"PACKAGE", "BASE VERSION", "CURRENT VERSION", "STATE", "UPGRADES"});
    read_rows(session, query.select, query.values, [&table](sqlite3_stmt *row) {
        table.add({column_text(row, package_name), column_text(row, base_version),
                   or_dash(column_text(row, current_version)),
                   state_word(sqlite3_column_int64(row, package_state)),
                   or_dash(column_text(row, upgrade_count))});
    });
    finish_as_table(session, "packages", table, "no base packages");
}

void run_show(Session &session, const std::string &patch) {
    RecordFilter filter;
    filter.patch = patch;
    const Query query = upgrade_query(filter);
    JsonRows rows(upgrade_columns, pkg_state);
    std::string text;
    read_rows(session, query.select, query.values, [&](sqlite3_stmt *row) {
        rows.add(row);
        text += (text.empty() ? "" : "\n") + described(row);
    });
    if (rows.empty()) {
        throw no_patch(patch);
    }
    if (session.json) {
        finish_with_members(session, "show", rows.take_member(), ExitCode::done);
        return;
    }
    Report report;
    report.text = text;
    finish(session, "show", report);
}

}  // namespace cmpntctl
