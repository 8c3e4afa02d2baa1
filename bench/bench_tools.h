// What the benchmarks share: a clock, the process's peak memory, a scratch home.
#pragma once

#include "util/vector_registers.h"

#include <QTemporaryDir>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>

namespace zov::bench {

/// Seconds that a piece of work takes; the best of `runs`.
template <typename Work>
double seconds(Work work, int runs = 1) {
    double best = 1e300;
    for (int run = 0; run < runs; ++run) {
        releaseWideRegisters();
        const auto start = std::chrono::steady_clock::now();
        work();
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        best = std::min(best, took.count());
    }
    return best;
}

/// One of /proc/self/status's memory figures ("VmHWM", "VmRSS") in megabytes; 0 where there is
/// none.
inline double processMegabytes(const char* figure) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind(figure, 0) == 0) return std::stod(line.substr(line.find(':') + 1)) / 1024;
    return 0;
}

/// A folder for the program's files that goes when the benchmark ends.
class ScratchHome {
 public:
    ScratchHome() { qputenv("ZOVRAND_HOME", folder_.path().toUtf8()); }
    QString path() const { return folder_.path(); }

 private:
    QTemporaryDir folder_;
};

}  // namespace zov::bench
