// A thread that talks to the X server, so that a server that hangs holds up nobody else: it takes
// one order at a time, and callers wait for it no longer than they want to. One for each process:
// the X library looks up permissions in a buffer that threads share.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <thread>

namespace wegslot {

class X11Worker {
public:
    explicit X11Worker(std::string display);
    X11Worker(const X11Worker&) = delete;
    X11Worker& operator=(const X11Worker&) = delete;

    /// Ends the thread. One that is stuck in the server is left behind; it ends when the server
    /// lets go of it, and touches nothing of ours.
    ~X11Worker();

    /// Has the thread connect unless it is or is busy. Does not wait.
    void connect();

    /// Whether there is a server, as far as the thread has found.
    [[nodiscard]] bool isConnected() const;

    /// Nothing when no answer comes within `patience`; at once when the thread is busy still.
    [[nodiscard]] std::optional<std::chrono::milliseconds>
    idleTime(std::chrono::milliseconds patience);

private:
    struct Shared;

    static void work(const std::shared_ptr<Shared>& shared);

    std::shared_ptr<Shared> shared_;
    std::thread thread_;
};

} // namespace wegslot
