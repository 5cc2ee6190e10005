#pragma once

#include <sys/resource.h>

#include <csignal>

namespace marnoth::test {

/// While one of these is alive no file of this process grows beyond so many bytes: a disk that fills up.
/// Not on Windows.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        formerHandler_ = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &former_);
        const rlimit limit{bytes, former_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &former_);
        std::signal(SIGXFSZ, formerHandler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit former_{};
    void (*formerHandler_)(int);
};

}  // namespace marnoth::test
