// A small framework for measurements: every benchmark runs in a process of its own, so that it has a peak
// memory of its own, and reports the best of several runs, the figure that a busy machine disturbs least.
#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace bench {

// Seconds that `work` takes: the best of `runs` runs.
template <class Work>
double bestOf(int runs, Work&& work) {
    double best = 1e30;
    for (int i = 0; i < runs; ++i) {
        auto start = std::chrono::steady_clock::now();
        work();
        std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        best = taken.count() < best ? taken.count() : best;
    }
    return best;
}

// Nanoseconds that one call takes, measured over many.
template <class Call>
double nanosecondsOf(Call&& call) {
    constexpr int calls = 100000;
    return bestOf(5,
                  [&] {
                      for (int i = 0; i < calls; ++i) call();
                  }) /
           calls * 1e9;
}

// Prints "name   value unit   ratio x baseline".
void report(const std::string& name, double value, const char* unit, double ratio, const char* baseline);
void report(const std::string& name, double value, const char* unit);

// The peak memory of this process so far, in MiB.
double peakMemory();

struct Benchmark {
    const char* name;
    void (*run)();
};

// The benchmarks of each file.
extern const Benchmark arrays;
extern const Benchmark autoAdjustment;
extern const Benchmark calls;
extern const Benchmark colorChain;
extern const Benchmark dictionaries;
extern const Benchmark facesHigh;
extern const Benchmark facesLow;
extern const Benchmark gaussianBlur;
extern const Benchmark kernels;
extern const Benchmark pictures;
extern const Benchmark pluginMain;
extern const Benchmark strings;

} // namespace bench
