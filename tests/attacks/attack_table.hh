// Attacks on verification, in tables: what is changed of a good device, and what must come of it.
#ifndef CMPNT_TESTS_ATTACK_TABLE_HH
#define CMPNT_TESTS_ATTACK_TABLE_HH

#include <functional>
#include <string>
#include <vector>

#include "tests/attacks/signed_device.hh"
#include "tests/support/device_test.hh"

using Texts = std::vector<std::string>;

struct Attack {
    const char *name;
    std::string path;              // that cmpnt_safe_verify is asked about
    std::function<void()> change;  // what the attacker does to the good device
    int32_t result;
    Texts errors;        // all that verification says on its error channel: "FUNCTION: MESSAGE"
    Texts changed = {};  // paths of what is not as before, outside of the scratch directory
    std::function<void()> after = nullptr;  // looks at what else there is to see
};

class AttackTest : public DeviceTest {
protected:
    // Each on a good device of its own.
    static void expect(const std::vector<Attack> &attacks);
};

// Every file of the device but for the scratch directory and the traces.
using Snapshot = std::vector<std::string>;
Snapshot look_at_device();
Texts changes_between(const Snapshot &before, const Snapshot &after);

// What was said on the error channel, by both roads. What the runner of commands says is left out.
Texts errors_said();

// Messages that come together.
Texts operator+(Texts first, const Texts &second);
Texts refused_list(const std::string &path, const std::string &list);  // its signature
Texts refused_load(const std::string &path, const std::string &message);
Texts refused_directory(const std::string &message);  // of a patch
Texts refused_smu_file(const std::string &name, int ret = 1);
Texts refused_digest(const std::string &name, int ret = 1);                 // of a patch package
Texts unlisted(const std::string &name);                                    // patch package
Texts refused_file(const std::string &installed, int levels, int ret = 1);  // of a base package
Texts refused_archive(const std::string &archive = base_package);
Texts refused_inner_archive();

#endif
