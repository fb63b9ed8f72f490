// Ends the event loop when the process is asked to end (SIGTERM, SIGINT, SIGHUP), so that
// settings and log reach the disk.
#pragma once

#include <QSocketNotifier>

#include <memory>

namespace wegslot {

class Termination {
public:
    /// Blocks the signals in this thread and in those it starts from here on; make it first.
    Termination();
    Termination(const Termination&) = delete;
    Termination& operator=(const Termination&) = delete;
    ~Termination();

private:
    int handle_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace wegslot
