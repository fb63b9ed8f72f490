#include "app/qt/bus_pump.h"

#include <QAbstractEventDispatcher>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

#include <poll.h>

namespace wegslot {
namespace {

class BusPump {
public:
    /// `rest`: for how long a busy bus is left alone.
    BusPump(dbus::Bus& bus, std::function<void()> lost, std::chrono::milliseconds rest)
        : bus_(bus),
          lost_(std::move(lost)),
          rest_(rest),
          readable_(bus.fd(), QSocketNotifier::Read),
          writable_(bus.fd(), QSocketNotifier::Write) {
        deadline_.setSingleShot(true);
        resting_.setSingleShot(true);
        resting_.setTimerType(Qt::PreciseTimer);
        writable_.setEnabled(false);
        const auto process = [this] { this->process(); };
        QObject::connect(&readable_, &QSocketNotifier::activated, &readable_, process);
        QObject::connect(&writable_, &QSocketNotifier::activated, &writable_, process);
        QObject::connect(&deadline_, &QTimer::timeout, &deadline_, process);
        QObject::connect(&resting_, &QTimer::timeout, &resting_, process);
        // What the bus waits for changes with every call that is made on it, anywhere; the
        // moment before the loop sleeps is late enough to ask.
        QObject::connect(QAbstractEventDispatcher::instance(),
                         &QAbstractEventDispatcher::aboutToBlock, &deadline_,
                         [this] { prepare(); });
    }

private:
    void process() {
        const int handled = bus_.process();
        if (bus_.isOpen()) return restIfBusy(handled);
        if (std::exchange(told_, true)) return;
        resting_.stop();
        readable_.setEnabled(false);
        writable_.setEnabled(false);
        lost_();
    }

    void restIfBusy(int handled) {
        if (rest_ == rest_.zero() || resting_.isActive()) return;
        const auto now = monotonicNow();
        const bool isBusy = handled > 0 && now - handledAt_ < 2 * rest_;
        if (handled > 0) handledAt_ = now;
        setResting(isBusy && handled < dbus::Bus::atOnce);
    }

    void setResting(bool rests) {
        readable_.setEnabled(!rests);
        rests ? resting_.start(rest_) : resting_.stop();
    }

    void prepare() {
        if (told_) return;
        // Another has handled what came in last: that it was the last.
        if (!bus_.isOpen()) return process();
        writable_.setEnabled((bus_.events() & POLLOUT) != 0);
        const auto deadline = bus_.deadline();
        if (!deadline) return deadline_.stop();
        // Somebody waits for an answer.
        if (resting_.isActive()) setResting(false);
        const auto remaining =
            std::chrono::ceil<std::chrono::milliseconds>(*deadline - monotonicNow());
        deadline_.start(std::max(remaining, std::chrono::milliseconds{0}));
    }

    static std::chrono::microseconds monotonicNow() {
        // On Linux the steady clock is CLOCK_MONOTONIC, the one the bus reckons in.
        return std::chrono::duration_cast<std::chrono::microseconds>(
            std::chrono::steady_clock::now().time_since_epoch());
    }

    dbus::Bus& bus_;
    std::function<void()> lost_;
    std::chrono::milliseconds rest_;
    std::chrono::microseconds handledAt_{0}; ///< when something last was
    bool told_ = false;
    QSocketNotifier readable_;
    QSocketNotifier writable_;
    QTimer deadline_;
    QTimer resting_;
};

Handle pumping(dbus::Bus& bus, std::function<void()> lost, std::chrono::milliseconds rest) {
    return Handle{[running = std::make_shared<BusPump>(bus, std::move(lost), rest)]() mutable {
        running.reset();
    }};
}

} // namespace

Handle pump(dbus::Bus& bus, std::function<void()> lost) {
    return pumping(bus, std::move(lost), std::chrono::milliseconds{0});
}

Handle pumpInBatches(dbus::Bus& bus, std::function<void()> lost) {
    return pumping(bus, std::move(lost), batchInterval);
}

} // namespace wegslot
