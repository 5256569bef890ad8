// What the library said: the trace file of this thread, and the system log of the recorder.
#ifndef CMPNT_TESTS_TRACE_HH
#define CMPNT_TESTS_TRACE_HH

#include <gtest/gtest.h>

#include <string>
#include <vector>

struct TraceLine {
    std::string time;
    std::string kind;
    std::string function;
    int line;
    std::string message;  // with its newline, if it brought one
};

// The trace file of the calling thread.
std::string trace_path();
std::vector<TraceLine> trace_lines();

// "KIND FUNCTION: MESSAGE" of every line so far, for whole sequences.
std::vector<std::string> trace_messages();

// How many trace lines are exactly this.
int traced(const std::string &kind, const std::string &function, const std::string &message);

// Whether the message was logged by the function on the channel with this tag, on both roads: in the
// trace file with the channel's kind, and in the system log behind "[function:line]", there with a
// format of its own. Needs a debug level that lets the channel through, as the fixture sets it.
testing::AssertionResult logged(const std::string &tag, const std::string &function,
                                const std::string &message);

// Empties the trace file and the recorded system log.
void forget_log();

#endif
