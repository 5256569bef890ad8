// Runs the pairs interleaved, so that a busy moment of the machine meets both sides, and prints the
// ratio of the medians of each.
#include <stdio.h>
#include <sys/resource.h>

#include <map>
#include <string>
#include <vector>

#include "bench/pair.hh"

namespace {

struct Pair {
    std::string name;
    double target;
    BenchClock clock;
};

std::vector<Pair> &pairs() {
    static std::vector<Pair> all;
    return all;
}

std::string library_side(const std::string &name) { return name + "/library"; }
std::string raw_side(const std::string &name) { return name + "/raw"; }

void add_side(const std::string &name, BenchWork work, long argument, BenchClock clock,
              int repetitions) {
    benchmark::internal::Benchmark *side = benchmark::RegisterBenchmark(name.c_str(), work);
    side->Arg(argument)->Unit(benchmark::kMicrosecond);
    if (clock == BenchClock::manual) {
        side->UseManualTime();
    }
    if (repetitions > 0) {
        side->Repetitions(repetitions);
    }
}

class RatioReporter : public benchmark::ConsoleReporter {
public:
    RatioReporter() : ConsoleReporter(OO_Tabular) {}

    void ReportRuns(const std::vector<Run> &runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median") {
                medians_[run.run_name.function_name] = run;
            }
        }
    }

    void Finalize() override {
        printf("\n%-44s %8s %8s\n", "library / raw", "ratio", "target");
        for (const Pair &pair : pairs()) {
            const double library = median_time(library_side(pair.name), pair.clock);
            const double raw = median_time(raw_side(pair.name), pair.clock);
            if (library > 0 && raw > 0) {  // else it was filtered out, or failed
                const double ratio = library / raw;
                printf("%-44s %8.2f %8.2f%s\n", pair.name.c_str(), ratio, pair.target,
                       ratio > pair.target ? "  above" : "");
            }
        }
    }

private:
    double median_time(const std::string &side, BenchClock clock) const {
        const auto median = medians_.find(side);
        if (median == medians_.end()) {
            return 0;
        }
        return clock == BenchClock::thread ? median->second.GetAdjustedCPUTime()
                                           : median->second.GetAdjustedRealTime();
    }

    std::map<std::string, Run> medians_;
};

double seconds_of(int whom) {
    struct rusage usage = {};
    getrusage(whom, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

}  // namespace

double seconds_with_children() { return seconds_of(RUSAGE_SELF) + seconds_of(RUSAGE_CHILDREN); }

bool add_pair(const char *name, double target, BenchWork library, BenchWork raw, long argument,
              BenchClock clock, int repetitions) {
    pairs().push_back({name, target, clock});
    add_side(library_side(name), library, argument, clock, repetitions);
    add_side(raw_side(name), raw, argument, clock, repetitions);
    return true;
}

// Options of the command line come last and win.
int main(int count, char **arguments) {
    std::vector<std::string> options = {
        arguments[0],
        "--benchmark_enable_random_interleaving=true",
        "--benchmark_repetitions=31",
        "--benchmark_min_time=0.03",
        "--benchmark_report_aggregates_only=true",
    };
    options.insert(options.end(), arguments + 1, arguments + count);
    std::vector<char *> all;
    all.reserve(options.size() + 1);
    for (std::string &option : options) {
        all.push_back(&option[0]);
    }
    int all_count = static_cast<int>(all.size());
    all.push_back(nullptr);
    benchmark::Initialize(&all_count, all.data());
    if (benchmark::ReportUnrecognizedArguments(all_count, all.data())) {
        return 1;
    }
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
