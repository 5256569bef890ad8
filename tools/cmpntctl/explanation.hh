// In words, what a package was held against, and what of it nobody looked at.
#ifndef CMPNTCTL_EXPLANATION_HH
#define CMPNTCTL_EXPLANATION_HH

#include "command.hh"
#include "verdict.hh"

namespace cmpntctl {

struct Explanation {
    std::string text;  // indented lines
    Json data = Json::object();
};

// Looks at everything once more by itself; ask it before the package's verification ends. Explains a
// package that was passed or refused by what it is.
Explanation explain(const Judgement &judgement);

}  // namespace cmpntctl

#endif
