// The commands about records, as the command line knows them.
#include <memory>

#include "record_rows.hh"
#include "record_writes.hh"
#include "rollback.hh"
#include "rollback_plan.hh"

namespace cmpntctl {
namespace {

void add_filters(CLI::App *command, RecordFilter &filter) {
    command
        ->add_option("--state", filter.states, "Only in this state, a word or a number; repeatable")
        ->type_name("STATE")
        ->allow_extra_args(false);
    command->add_option("--package", filter.package, "Only of this package")->type_name("NAME");
}

void add_list(CLI::App &app, Session &session) {
    const auto filter = std::make_shared<RecordFilter>();
    CLI::App *list = app.add_subcommand("list", "The upgrade records");
    add_filters(list, *filter);
    list->add_option("--patch", filter->patch, "Only of this patch")->type_name("PATCH");
    list->footer(
        "Exit code 2 when there is none.\n\nExample:\n"
        "  cmpntctl list --state active --state running");
    list->callback([filter, &session] { run_list(session, *filter); });
}

void add_show(CLI::App &app, Session &session) {
    const auto patch = std::make_shared<std::string>();
    CLI::App *show = app.add_subcommand("show", "All that is recorded of one patch");
    show->add_option("PATCH", *patch, "Its name")->required();
    show->footer("Example:\n  cmpntctl show smu_security");
    show->callback([patch, &session] { run_show(session, *patch); });
}

void add_packages(CLI::App &app, Session &session) {
    const auto filter = std::make_shared<RecordFilter>();
    CLI::App *packages = app.add_subcommand("packages", "The base packages");
    add_filters(packages, *filter);
    packages->footer(
        "Exit code 2 when there is none.\n\nExample:\n"
        "  cmpntctl packages --package bash");
    packages->callback([filter, &session] { run_packages(session, *filter); });
}

void add_plan(CLI::App &app, Session &session) {
    const auto patch = std::make_shared<std::string>();
    CLI::App *plan = app.add_subcommand("plan", "What a command would do; nothing is changed");
    plan->require_subcommand(1);
    plan->footer("Example:\n  cmpntctl plan rollback smu_security");
    CLI::App *rollback = plan->add_subcommand(
        "rollback", "For each package of the patch: the decision, the file, the reason");
    rollback->add_option("PATCH", *patch, "Its name")->required();
    rollback->footer(
        "Exit code 1 when a package is blocked, 2 when the patch is not in force.\n\nExample:\n"
        "  cmpntctl plan rollback smu_security --json");
    rollback->callback([patch, &session] { run_plan_rollback(session, *patch); });
}

void add_rollback(CLI::App &app, Session &session) {
    struct Options {
        std::string patch, directory;
    };
    const auto options = std::make_shared<Options>();
    CLI::App *rollback = app.add_subcommand("rollback", "Take a patch away");
    rollback->add_option("PATCH", options->patch, "Its name")->required();
    rollback
        ->add_option("--install-dir", options->directory,
                     "Put the package files into this folder, as PACKAGE.ipk, and take those of "
                     "removed packages out of it")
        ->type_name("DIR");
    rollback->footer(
        "Says what it would do, and asks, unless --yes is given. Without --install-dir the "
        "records\n"
        "alone are changed, states, times and versions: the files that it names are then for the\n"
        "package manager to install. A run that broke off is taken up by running it again.\n\n"
        "Example:\n"
        "  cmpntctl rollback smu_security --install-dir /opt/packages --yes");
    rollback->callback(
        [options, &session] { run_rollback(session, options->patch, options->directory); });
}

void add_new_record_options(CLI::App *add, NewRecord &record) {
    add->add_option("PATCH", record.patch, "The name of the patch")->required();
    add->add_option("PACKAGE", record.package, "The name of the package")->required();
    add->add_option("VERSION", record.version, "The version that the patch brings")->required();
    add->add_option("--file", record.file, "The package file")->type_name("PATH");
    add->add_option("--state", record.state, "A word or a number; installed unless given")
        ->type_name("STATE");
    add->add_option("--last-version", record.last_version, "The version before")
        ->type_name("VERSION");
    add->add_option("--time", record.time, "Effective since")->type_name("TIME");
    add->add_option("--description", record.description, "For people")->type_name("TEXT");
    add->add_option("--patch-version", record.patch_version, "Of a single patch")
        ->type_name("VERSION");
    add->add_option("--patch-size", record.patch_size, "In bytes")->type_name("BYTES");
    add->add_option("--card", record.card_id, "Card identifier")->type_name("ID");
    add->add_flag("--cold", record.is_cold, "Takes effect with a restart");
    add->add_flag("--app", record.is_app, "An application");
    add->add_flag("--hot", record.is_hot, "A hot patch");
    add->add_flag("--single", record.is_single, "A single patch");
}

void add_record_add(CLI::App *record, Session &session) {
    const auto added = std::make_shared<NewRecord>();
    CLI::App *add = record->add_subcommand("add", "Record one package of a patch");
    add_new_record_options(add, *added);
    add->footer(
        "Example:\n"
        "  cmpntctl record add smu_security bash 5.2.15+smu2 --state active \\\n"
        "      --file /data/cmpnt/opkg/download/smu_security/bash_5.2.15+smu2.ipk");
    add->callback([added, &session] { run_record_add(session, *added); });
}

struct Change {
    std::string patch, value, package;
    bool is_cleared = false;
};

void add_record_state(CLI::App *record, Session &session) {
    const auto change = std::make_shared<Change>();
    CLI::App *state = record->add_subcommand("state", "Set the state of a patch");
    state->add_option("PATCH", change->patch, "Its name")->required();
    state->add_option("STATE", change->value, "A word or a number")->required();
    state->add_option("--package", change->package, "Of this package alone")->type_name("NAME");
    state->footer("Example:\n  cmpntctl record state smu_security running");
    state->callback([change, &session] {
        run_record_state(session, change->patch, change->value, change->package);
    });
}

void add_record_delete(CLI::App *record, Session &session) {
    const auto change = std::make_shared<Change>();
    CLI::App *remove = record->add_subcommand("delete", "Delete all records of a patch");
    remove->add_option("PATCH", change->patch, "Its name")->required();
    remove->footer(
        "Asks, unless --yes is given. No file is touched.\n\nExample:\n"
        "  cmpntctl record delete smu_security --yes");
    remove->callback([change, &session] { run_record_delete(session, change->patch); });
}

void add_record_time(CLI::App *record, Session &session) {
    const auto change = std::make_shared<Change>();
    CLI::App *time = record->add_subcommand("time", "Set since when a patch is in effect");
    time->add_option("PATCH", change->patch, "Its name")->required();
    CLI::Option *value = time->add_option("TIME", change->value, "As text; now unless given");
    time->add_flag("--clear", change->is_cleared, "No time at all")->excludes(value);
    time->footer("Example:\n  cmpntctl record time smu_security \"2024-03-01 10:15:02\"");
    time->callback([change, &session] {
        const bool is_now = change->value.empty() && !change->is_cleared;
        run_record_time(session, change->patch, is_now ? "now" : change->value);
    });
}

void add_record(CLI::App &app, Session &session) {
    CLI::App *record = app.add_subcommand("record", "Write upgrade records");
    record->require_subcommand(1);
    record->footer(
        "Each write is followed by a copy of the database over its backup.\n\nExample:\n"
        "  cmpntctl record state smu_security active");
    add_record_add(record, session);
    add_record_state(record, session);
    add_record_delete(record, session);
    add_record_time(record, session);
}

void add_init(CLI::App &app, Session &session) {
    CLI::App *init = app.add_subcommand("init", "Make the tables that are missing");
    init->footer(
        "What is there stays as it is. Exit code 2 when nothing is missing.\n\nExample:\n"
        "  cmpntctl init");
    init->callback([&session] { run_init(session); });
}

}  // namespace

void add_record_commands(CLI::App &app, Session &session) {
    add_list(app, session);
    add_show(app, session);
    add_packages(app, session);
    add_plan(app, session);
    add_rollback(app, session);
    add_record(app, session);
    add_init(app, session);
}

}  // namespace cmpntctl
