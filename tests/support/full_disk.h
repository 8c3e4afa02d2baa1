// A disk that is full, for the length of a scope: every write of a file beyond
// some size fails.
#pragma once

#include <sys/resource.h>
#include <csignal>

namespace zov::test {

class FullDisk {
 public:
    explicit FullDisk(rlim_t bytesThatFit) {
        getrlimit(RLIMIT_FSIZE, &saved_);
        const rlimit limit{bytesThatFit, saved_.rlim_max};
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &saved_);
        std::signal(SIGXFSZ, handler_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

 private:
    rlimit saved_{};
    void (*handler_)(int) = nullptr;
};

}  // namespace zov::test
