// A benchmark pair: what the library does beside the same work done raw, with the most that the ratio
// of their times is to be.
#ifndef CMPNT_BENCH_PAIR_HH
#define CMPNT_BENCH_PAIR_HH

#include <benchmark/benchmark.h>

using BenchWork = void (*)(benchmark::State &state);

// What is compared: the thread's own time, which a busy machine disturbs least, or what the work
// itself measured (SetIterationTime).
enum class BenchClock { thread, manual };

// Call it from a static initialiser. state.range(0) is the argument, for works of several sizes. Work
// that takes long may say how often it is repeated; 0: as often as all the others.
bool add_pair(const char *name, double target, BenchWork library, BenchWork raw, long argument = 0,
              BenchClock clock = BenchClock::thread, int repetitions = 0);

// The time spent by this process and the children that it waited for, for work that starts some.
double seconds_with_children();

#endif
