#pragma once

#include <QtGlobal>
#include <csignal>
#include <sys/resource.h>

namespace brivant {

// No file of this process can grow beyond the size.
class full_disk {
public:
    explicit full_disk(rlim_t size) : signal_before(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit small{size, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~full_disk() {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, signal_before);
    }
    Q_DISABLE_COPY_MOVE(full_disk)

private:
    rlimit before{};
    void (*signal_before)(int);
};

} // namespace brivant
