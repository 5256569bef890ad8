#include "confirm.hh"

#include <stdio.h>
#include <unistd.h>

#include <iostream>

namespace cmpntctl {

void confirm(const Session &session, const std::string &question) {
    if (session.yes) {
        return;
    }
    if (isatty(STDIN_FILENO) == 0) {
        throw Failure(ExitCode::usage, "there is nobody to ask: standard input is no terminal",
                      "Say --yes to go on without being asked.");
    }
    fprintf(stderr, "%s [y/N] ", question.c_str());
    std::string answer;
    std::getline(std::cin, answer);
    if (answer != "y" && answer != "Y" && answer != "yes") {
        throw Failure(ExitCode::nothing, "not confirmed: nothing was changed", "");
    }
}

}  // namespace cmpntctl
