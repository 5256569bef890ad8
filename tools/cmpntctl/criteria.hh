// The question of a hot-patch lookup: items joined by "#", each a key, ":" and a value.
#ifndef CMPNTCTL_CRITERIA_HH
#define CMPNTCTL_CRITERIA_HH

#include <string>
#include <utility>
#include <vector>

namespace cmpntctl {

class Criteria {
public:
    // Throws a Failure (usage) for what the library would refuse, misread, or only find wrong when it
    // comes to a record.
    explicit Criteria(const std::string &text);

    const std::string &text() const { return text_; }

    // An answer, taken apart into keys and values. A value may have ":" and "#".
    std::vector<std::pair<std::string, std::string>> take_apart(const std::string &answer) const;

private:
    std::string text_;
    std::vector<std::string> keys_;  // as they stand there, blanks included
};

}  // namespace cmpntctl

#endif
