// Writes lines to destinations that may hang: a stopped terminal, a pipe that nobody reads,
// somebody else's file system. Each destination has a thread of its own, so callers never wait;
// lines that are not taken in time are dropped, and at the end a thread that hangs is abandoned.
#pragma once

#include "base/result.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace wegslot {

/// The lines for one destination. Its end lets the thread take what is there and then end.
class LineQueue {
public:
    struct State;

    explicit LineQueue(std::shared_ptr<State> state);
    LineQueue(LineQueue&&) = default;
    LineQueue& operator=(LineQueue&&) = delete;
    LineQueue(const LineQueue&) = delete;
    LineQueue& operator=(const LineQueue&) = delete;
    ~LineQueue();

    /// Adds a line, from any thread; false when there is no room for it, or nobody who takes it.
    bool put(std::string line);

    /// Why a line could not be taken. None is taken after it.
    [[nodiscard]] std::optional<Failure> failure() const;

private:
    std::shared_ptr<State> state_;
};

class LineThreads {
public:
    /// Takes one line on the thread, and all the time that it needs. Is gone when the thread ends,
    /// on that thread too: whatever it owns may hang while it is closed.
    using Take = std::function<std::optional<Failure>(std::string_view line)>;

    /// How long the end waits for the threads, together.
    static constexpr std::chrono::milliseconds patience{1000};

    LineThreads();
    LineThreads(const LineThreads&) = delete;
    LineThreads& operator=(const LineThreads&) = delete;

    /// Waits for all that has been put, and leaves behind what hangs longer than `patience`.
    ~LineThreads();

    /// `capacity`: the bytes that may wait.
    [[nodiscard]] LineQueue start(Take take, std::size_t capacity);

    /// Threads that have not ended.
    [[nodiscard]] std::size_t count() const;

private:
    struct Running;
    std::shared_ptr<Running> running_;
};

} // namespace wegslot
