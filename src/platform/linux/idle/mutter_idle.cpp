#include "platform/linux/idle/mutter_idle.h"

namespace wegslot {
namespace {

constexpr auto service = "org.gnome.Mutter.IdleMonitor";
/// The monitor of all input devices together.
constexpr auto object = "/org/gnome/Mutter/IdleMonitor/Core";

} // namespace

MutterIdle::MutterIdle(dbus::Connection& sessionBus) {
    connection_ = sessionBus.bus().follow([this](dbus::Bus* bus) { busChanged(bus); });
}

std::optional<Seconds> MutterIdle::idleTime() {
    std::optional<Seconds> idle;
    if (!running_) return idle;
    bus_->ask({.destination = service,
               .path = object,
               .interface = service,
               .member = "GetIdletime",
               .timeout = answerPatience},
              [&idle](const dbus::Message& answer) {
                  const auto milliseconds = answer.read().integer();
                  if (!milliseconds || *milliseconds < 0) return;
                  idle = std::chrono::milliseconds{*milliseconds};
              });
    return idle;
}

void MutterIdle::busChanged(dbus::Bus* bus) {
    owner_.reset();
    running_ = false;
    bus_ = bus;
    if (bus == nullptr) return;
    owner_ = bus->followOwner(
        service, [this](const std::optional<std::string>& owner) { running_ = owner.has_value(); });
}

} // namespace wegslot
