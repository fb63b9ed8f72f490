#include "tests/support/bus_loop.h"

#include "tests/support/waiting.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <chrono>
#include <list>
#include <stdexcept>
#include <utility>

#include <poll.h>

namespace wegslot {
namespace {

Result<std::unique_ptr<dbus::Bus>> open(const std::string& address, dbus::Forgeries& forgeries) {
    sd_bus* bus = nullptr;
    if (sd_bus_new(&bus) < 0) return Failure{"sd_bus_new"};
    sd_bus_set_address(bus, address.c_str());
    sd_bus_set_bus_client(bus, 1);
    if (sd_bus_start(bus) < 0) {
        sd_bus_unref(bus);
        return Failure{"testbus: kan niet verbinden"};
    }
    return std::make_unique<dbus::Bus>(bus, forgeries);
}

} // namespace

bool BusLoop::runUntil(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + onlyAHang;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        turn(10);
    }
    return true;
}

void BusLoop::settle() {
    // The daemon handles one connection's messages in order, so that an answer to a question
    // asked now comes after everything sent before. Twice: what that brought may be answered.
    for (int round = 0; round < 2; ++round) {
        struct Question {
            std::shared_ptr<Driven> asked;
            bool isAnswered = false;
            Subscription answer = {};
        };
        std::list<Question> questions;
        for (const auto& entry : driven_) {
            if (!entry->bus->isOpen()) continue;
            Question& question = questions.emplace_back(Question{entry});
            question.answer =
                entry->bus->call({.destination = "org.freedesktop.DBus",
                                  .path = "/org/freedesktop/DBus",
                                  .interface = "org.freedesktop.DBus",
                                  .member = "GetId"},
                                 [&question](const dbus::Message&) { question.isAnswered = true; });
        }
        // A connection that ends meanwhile answers nothing.
        const auto isDone = [this](const Question& question) {
            return question.isAnswered ||
                   std::ranges::find(driven_, question.asked) == driven_.end() ||
                   !question.asked->bus->isOpen();
        };
        if (!runUntil([&] { return std::ranges::all_of(questions, isDone); }))
            throw std::runtime_error("the bus does not settle");
    }
    turn(0);
}

void BusLoop::pass(Nanoseconds duration) {
    settle();
    time.advance(duration);
    settle();
}

std::unique_ptr<dbus::Bus> BusLoop::connect() {
    auto opened = open(daemon.address(), forgeries);
    if (!opened) throw std::runtime_error(opened.failure().message.builtIn());
    return *std::move(opened);
}

dbus::Connection::Open BusLoop::opener() {
    return [this] { return open(daemon.address(), forgeries); };
}

dbus::Connection::Attach BusLoop::attacher() {
    return
        [this](dbus::Bus& bus, std::function<void()> lost) { return attach(bus, std::move(lost)); };
}

Handle BusLoop::attach(dbus::Bus& bus, std::function<void()> lost) {
    const auto entry = std::make_shared<Driven>(Driven{&bus, std::move(lost)});
    driven_.push_back(entry);
    return Handle{[this, entry] { std::erase(driven_, entry); }};
}

Subscription BusLoop::onReadable(int descriptor, std::function<void()> action) {
    const auto entry = std::make_shared<Watched>(Watched{descriptor, std::move(action)});
    watched_.push_back(entry);
    return Subscription{[this, entry] {
        entry->active = false;
        std::erase(watched_, entry);
    }};
}

void BusLoop::turn(int milliseconds) {
    const auto watched = watched_; // handling may come and go with descriptors
    std::vector<pollfd> descriptors;
    for (const auto& entry : watched)
        descriptors.push_back({entry->descriptor, POLLIN, 0});
    bool waiting = false;
    for (const auto& entry : driven_) {
        if (!entry->bus->isOpen()) continue;
        descriptors.push_back({entry->bus->fd(), entry->bus->events(), 0});
        waiting = waiting || entry->bus->deadline() == std::chrono::microseconds{0};
    }
    poll(descriptors.data(), descriptors.size(), waiting ? 0 : milliseconds);
    for (std::size_t i = 0; i < watched.size(); ++i)
        if (descriptors[i].revents != 0 && watched[i]->active) watched[i]->action();
    const auto all = driven_; // handling may attach and detach
    for (const auto& entry : all) {
        while (entry->bus->isOpen() && entry->bus->process() > 0) {
        }
        if (entry->bus->isOpen() || std::exchange(entry->told, true)) continue;
        if (entry->lost) entry->lost();
    }
    time.advance(Nanoseconds{0});
}

} // namespace wegslot
