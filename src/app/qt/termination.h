// Ends the event loop when the process is asked to end (SIGTERM, SIGINT, SIGHUP), so that
// settings and log reach the disk.
#pragma once

#include <QSocketNotifier>

#include <memory>

namespace wegslot {

class Termination {
public:
    /// Blocks the signals in this thread and in those it starts from here on: make it before
    /// Qt's application object, which may start some.
    Termination();
    Termination(const Termination&) = delete;
    Termination& operator=(const Termination&) = delete;
    ~Termination();

    /// The signals end the event loop for as long as what this gives lives. Needs the application
    /// object.
    [[nodiscard]] std::unique_ptr<QSocketNotifier> watch() const;

private:
    int handle_;
};

} // namespace wegslot
