// The pause before something is tried again.
#ifndef CMPNT_COMMON_PAUSE_HH
#define CMPNT_COMMON_PAUSE_HH

// A whole second, also where the host's timers interrupt it.
void pause_for_a_second();

#endif
