// For calls that would wait for ever where they go wrong.
#ifndef CMPNT_TESTS_DEADLINE_HH
#define CMPNT_TESTS_DEADLINE_HH

#include <unistd.h>

// The test program is killed when the scope lasts longer than a few seconds.
class Deadline {
public:
    Deadline() { alarm(5); }
    ~Deadline() { alarm(0); }
    Deadline(const Deadline &) = delete;
    Deadline &operator=(const Deadline &) = delete;
};

#endif
