// The one JSON document of a command, or its text.
#include "report.hh"

#include <errno.h>
#include <stdio.h>
#include <string.h>

namespace cmpntctl {
namespace {

constexpr int schema_version = 1;

}  // namespace

void print(const std::string &text) {
    const bool written = fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (!written || fflush(stdout) != 0) {
        throw Failure(ExitCode::failed,
                      std::string("standard output cannot be written: ") + strerror(errno),
                      "What the command had to do is done; only its answer is lost.");
    }
}

void finish(Session &session, const char *command, const Report &report) {
    session.code = report.code;
    if (!session.json) {
        print(report.text);
        return;
    }
    Json document = {{"schema_version", schema_version}, {"command", command}};
    if (!report.data.is_null()) {
        document.update(report.data);
    }
    // Texts may come from anywhere: a byte that is no UTF-8 must not make the document invalid.
    print(document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n");
}

void finish_with_members(Session &session, const char *command, const std::string &members,
                         ExitCode code) {
    session.code = code;
    print("{\"schema_version\": " + std::to_string(schema_version) + ", \"command\": \"" + command +
          "\"");
    print(members.empty() ? "" : ", ");
    print(members);
    print("}\n");
}

}  // namespace cmpntctl
