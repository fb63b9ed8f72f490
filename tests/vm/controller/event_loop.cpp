#include "event_loop.h"

#include <poll.h>

#include <algorithm>
#include <vector>

namespace controller {

namespace {

timespec until(TimePoint due) {
    const auto left = std::max(due - std::chrono::steady_clock::now(), Duration::zero());
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    return {.tv_sec = seconds.count(), .tv_nsec = std::chrono::nanoseconds(left - seconds).count()};
}

bool isReadable(const pollfd& watched) {
    return (watched.revents & (POLLIN | POLLHUP | POLLERR)) != 0;
}

} // namespace

EventLoop::EventLoop(VirtualPort& port, Controller& controller, Air& air, Director& director)
    : port_(port),
      controller_(controller),
      air_(air),
      director_(director) {}

void EventLoop::serve(LineChannel owner) {
    scripts_.push_back(std::move(owner));
    hasOwner_ = true;
}

void EventLoop::run() {
    while (!director_.wantsToQuit() && !(hasOwner_ && scripts_.empty())) {
        waitForNext();
        const TimePoint now = std::chrono::steady_clock::now();
        controller_.passTime(now);
        air_.act(now, controller_);
    }
}

void EventLoop::waitForNext() {
    // Negative descriptors, of what is not there, are passed over by poll.
    std::vector<pollfd> watched{{port_.descriptor(), POLLIN, 0}, {socket_.descriptor(), POLLIN, 0}};
    for (const LineChannel& script : scripts_)
        watched.push_back({script.descriptor(), POLLIN, 0});

    const std::optional<TimePoint> due =
        sooner(air_.nextDue(controller_.isListening()), controller_.due());
    const timespec timeout = due ? until(*due) : timespec{};
    if (::ppoll(watched.data(), watched.size(), due ? &timeout : nullptr, nullptr) <= 0) return;

    if (isReadable(watched[0])) {
        const Bytes packet = port_.read();
        if (!packet.empty()) controller_.receive(packet);
    }
    const auto answer = [this](std::string_view line) { return director_.carryOut(line); };
    auto state = watched.begin() + 2;
    for (auto script = scripts_.begin(); script != scripts_.end(); ++state) {
        const bool goesOn = !isReadable(*state) || script->serve(answer);
        script = goesOn ? std::next(script) : scripts_.erase(script);
    }
    if (isReadable(watched[1])) {
        if (std::optional<LineChannel> caller = socket_.accept())
            scripts_.push_back(std::move(*caller));
    }
}

} // namespace controller
