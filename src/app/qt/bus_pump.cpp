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
    BusPump(dbus::Bus& bus, std::function<void()> lost)
        : bus_(bus),
          lost_(std::move(lost)),
          readable_(bus.fd(), QSocketNotifier::Read),
          writable_(bus.fd(), QSocketNotifier::Write) {
        deadline_.setSingleShot(true);
        writable_.setEnabled(false);
        const auto process = [this] { this->process(); };
        QObject::connect(&readable_, &QSocketNotifier::activated, &readable_, process);
        QObject::connect(&writable_, &QSocketNotifier::activated, &writable_, process);
        QObject::connect(&deadline_, &QTimer::timeout, &deadline_, process);
        // What the bus waits for changes with every call that is made on it, anywhere; the
        // moment before the loop sleeps is late enough to ask.
        QObject::connect(QAbstractEventDispatcher::instance(),
                         &QAbstractEventDispatcher::aboutToBlock, &deadline_,
                         [this] { prepare(); });
    }

private:
    void process() {
        bus_.process();
        if (bus_.isOpen() || std::exchange(told_, true)) return;
        readable_.setEnabled(false);
        writable_.setEnabled(false);
        lost_();
    }

    void prepare() {
        if (told_) return;
        writable_.setEnabled((bus_.events() & POLLOUT) != 0);
        const auto deadline = bus_.deadline();
        if (!deadline) return deadline_.stop();
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
    bool told_ = false;
    QSocketNotifier readable_;
    QSocketNotifier writable_;
    QTimer deadline_;
};

} // namespace

Handle pump(dbus::Bus& bus, std::function<void()> lost) {
    return Handle{
        [running = std::make_shared<BusPump>(bus, std::move(lost))]() mutable { running.reset(); }};
}

} // namespace wegslot
