#include "base/linux/line_threads.h"

#include <condition_variable>
#include <csignal>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

namespace wegslot {

struct LineQueue::State {
    const std::size_t capacity;
    std::mutex mutex{};
    std::condition_variable changed{};
    std::deque<std::string> waiting{};
    std::size_t bytes = 0;
    bool isEnding = false;
    std::optional<Failure> failure{};

    /// The next line, or nothing when there will be none.
    std::optional<std::string> next() {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return isEnding || !waiting.empty(); });
        if (waiting.empty()) return std::nullopt;
        std::string line = std::move(waiting.front());
        waiting.pop_front();
        bytes -= line.size();
        return line;
    }

    void fail(Failure reason) {
        const std::lock_guard lock(mutex);
        failure = std::move(reason);
        waiting.clear();
    }
};

struct LineThreads::Running {
    std::mutex mutex{};
    std::condition_variable ended{};
    std::size_t count = 0;

    void end() {
        const std::lock_guard lock(mutex);
        --count;
        ended.notify_all();
    }
};

namespace {

/// Signals are for the program's own thread; a reader that went is a failure of the write.
void takeNoSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

void takeLines(LineThreads::Take take, LineQueue::State& state) {
    while (const auto line = state.next())
        if (auto failure = take(*line)) return state.fail(*std::move(failure));
}

} // namespace

LineQueue::LineQueue(std::shared_ptr<State> state) : state_(std::move(state)) {}

LineQueue::~LineQueue() {
    if (!state_) return;
    const std::lock_guard lock(state_->mutex);
    state_->isEnding = true;
    state_->changed.notify_one();
}

bool LineQueue::put(std::string line) {
    const std::lock_guard lock(state_->mutex);
    if (state_->failure || state_->bytes + line.size() > state_->capacity) return false;
    state_->bytes += line.size();
    state_->waiting.push_back(std::move(line));
    state_->changed.notify_one();
    return true;
}

std::optional<Failure> LineQueue::failure() const {
    const std::lock_guard lock(state_->mutex);
    return state_->failure;
}

LineThreads::LineThreads() : running_(std::make_shared<Running>()) {}

LineThreads::~LineThreads() {
    std::unique_lock lock(running_->mutex);
    running_->ended.wait_for(lock, patience, [this] { return running_->count == 0; });
}

LineQueue LineThreads::start(Take take, std::size_t capacity) {
    const std::shared_ptr<LineQueue::State> state(new LineQueue::State{.capacity = capacity});
    {
        const std::lock_guard lock(running_->mutex);
        ++running_->count;
    }
    std::thread([state, take = std::move(take), running = running_]() mutable {
        takeNoSignals();
        takeLines(std::move(take), *state);
        running->end();
    }).detach();
    return LineQueue{state};
}

std::size_t LineThreads::count() const {
    const std::lock_guard lock(running_->mutex);
    return running_->count;
}

} // namespace wegslot
