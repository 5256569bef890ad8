// The tables, as the library's own display prints them to the operator.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "platform/reference/reference_platform.h"
#include "tools/demo/demo.hh"

namespace demo {
namespace {

// Of the hundreds of base packages, those that the upgrades are about.
constexpr const char *shown_packages[] = {"bash ", "grep ", "sed ", "tar "};

bool is_shown(const char *line) {
    for (const char *package : shown_packages) {
        if (strncmp(line, package, strlen(package)) == 0) {
            return true;
        }
    }
    return false;
}

void print_selected_lines(char *text) {
    int left_out = 0;
    bool header = true;
    for (char *line = strsep(&text, "\n"); text != nullptr; line = strsep(&text, "\n")) {
        if (header || is_shown(line)) {
            printf("%s\n", line);
        } else {
            left_out++;
        }
        header = false;
    }
    printf("... and %d more\n", left_out);
}

}  // namespace

void show_tables(const char *title) {
    printf("\n--- %s: pkg_upgrade_table\n", title);
    traverse_pkg_info_table(CMPNT_PKG_UPGRADE_TABLE, CMPNT_ROWS_SHOW_ALL, 0, CMPNT_DB_MAIN);
    printf("--- %s: package_info_table\n", title);
    char *text = nullptr;
    size_t size = 0;
    FILE *memory = open_memstream(&text, &size);
    reference_platform_set_terminal(memory);
    traverse_pkg_info_table(CMPNT_PACKAGE_INFO_TABLE, CMPNT_ROWS_SHOW_ALL, 0, CMPNT_DB_MAIN);
    reference_platform_set_terminal(stdout);
    fclose(memory);
    print_selected_lines(text);
    free(text);
    printf("\n");
}

}  // namespace demo
