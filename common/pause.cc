// The pause before something is tried again.
#include "common/pause.hh"

#include <errno.h>
#include <time.h>

// Not sleep(), which counts what is left in whole seconds: none, when it is less than one.
void pause_for_a_second() {
    timespec rest = {1, 0};
    while (nanosleep(&rest, &rest) != 0 && errno == EINTR) {}
}
