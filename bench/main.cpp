// Runs the benchmarks whose names contain the first argument, or all of them.
#include "bench.h"

#include <cstdio>
#include <cstring>
#include <sys/wait.h>
#include <unistd.h>

int main(int argc, char** argv) {
    const bench::Benchmark benchmarks[] = {bench::pluginMain, bench::calls,        bench::dictionaries,
                                           bench::arrays,     bench::strings,      bench::pictures,
                                           bench::colorChain, bench::gaussianBlur, bench::autoAdjustment,
                                           bench::kernels,    bench::facesLow,     bench::facesHigh};
    bool failed = false, ran = false;
    for (const bench::Benchmark& benchmark : benchmarks) {
        if (argc > 1 && !std::strstr(benchmark.name, argv[1])) continue;
        ran = true;
        std::printf("%s\n", benchmark.name);
        std::fflush(stdout);
        pid_t child = fork();
        if (child == 0) {
            benchmark.run();
            bench::report("peak memory", bench::peakMemory(), "MiB");
            std::fflush(stdout);
            _exit(0);
        }
        int status = 0;
        if (child < 0 || waitpid(child, &status, 0) < 0 || status != 0) {
            std::printf("  failed\n");
            failed = true;
        }
    }
    if (!ran) std::printf("no benchmark's name contains '%s'\n", argv[1]);
    return failed || !ran;
}
