// The records of the two tables of the main database, as people and programs are shown them.
#ifndef CMPNTCTL_RECORD_ROWS_HH
#define CMPNTCTL_RECORD_ROWS_HH

#include <cstdint>
#include <string>
#include <vector>

#include "command.hh"

namespace cmpntctl {

// Which rows are wanted: of all that is given, each.
struct RecordFilter {
    std::vector<std::string> states;
    std::string patch;
    std::string package;
};

void run_list(Session &session, const RecordFilter &filter);
void run_show(Session &session, const std::string &patch);
void run_packages(Session &session, const RecordFilter &filter);

}  // namespace cmpntctl

#endif
