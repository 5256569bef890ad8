// A command run beside plain popen, for a command that says nothing and for one that does.
#include <stdio.h>

#include "bench/pair.hh"
#include "libcmpnt_db.h"

namespace {

struct Command {
    const char *word;
    const char *arguments;
    const char *line;
};

const Command commands[] = {
    {"true", "", "true "},
    {"cat", "/etc/passwd", "cat /etc/passwd"},
};

void run_with_library(benchmark::State &state) {
    const Command &command = commands[state.range(0)];
    for (auto _ : state) {
        const double start = seconds_with_children();
        if (cmpnt_popen_cmd_run_not_deal_brk(command.word, command.arguments) != 0) {
            state.SkipWithError("the command failed");
        }
        state.SetIterationTime(seconds_with_children() - start);
    }
}

void run_with_popen(benchmark::State &state) {
    const Command &command = commands[state.range(0)];
    for (auto _ : state) {
        const double start = seconds_with_children();
        FILE *output = popen(command.line, "r");
        char line[CMPNT_LINE_SIZE];
        while (fgets(line, sizeof(line), output) != nullptr) {}
        if (pclose(output) != 0) {
            state.SkipWithError("the command failed");
        }
        state.SetIterationTime(seconds_with_children() - start);
    }
}

const bool added =
    add_pair("command without output", 1.05, run_with_library, run_with_popen, 0,
             BenchClock::manual) &&
    add_pair("command with output", 1.05, run_with_library, run_with_popen, 1, BenchClock::manual);

}  // namespace
