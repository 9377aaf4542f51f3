// Processor time of this process, for the benchmarks that time themselves.
#pragma once

#include <ctime>

namespace jmap::bench {

inline double processorSeconds() {
    timespec now = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

// Processor seconds that `run` takes.
template <class Run>
double timed(const Run& run) {
    const double start = processorSeconds();
    run();
    return processorSeconds() - start;
}

}  // namespace jmap::bench
