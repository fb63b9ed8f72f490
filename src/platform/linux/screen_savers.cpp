#include "platform/linux/screen_savers.h"

#include <utility>

namespace wegslot {
namespace {

constexpr std::array desktops{"org.gnome.Shell", "org.kde.KWin"};

} // namespace

ScreenSavers::ScreenSavers(dbus::Connection& sessionBus, Scheduler& scheduler)
    : scheduler_(scheduler) {
    connection_ = sessionBus.bus().onChange([this](dbus::Bus* bus) { busChanged(bus); });
}

void ScreenSavers::busChanged(dbus::Bus* bus) {
    signals_.clear();
    asking_.reset();
    savers_ = {};
    hintingDesktops_ = {};
    bus_ = bus;
    publish();
    if (bus == nullptr) return;
    for (std::size_t i = 0; i < services.size(); ++i) {
        signals_.push_back(bus->onSignal(
            services[i].name, {.interface = services[i].interface, .member = "ActiveChanged"},
            [this, i](const dbus::Message& message) {
                if (const auto active = message.read().boolean()) setActive(i, active);
            }));
        signals_.push_back(
            bus->followOwner(services[i].name, [this, i](const std::optional<std::string>& owner) {
                ownerChanged(i, owner);
            }));
    }
    for (std::size_t i = 0; i < desktops.size(); ++i)
        signals_.push_back(
            bus->followOwner(desktops[i], [this, i](const std::optional<std::string>& owner) {
                hintingDesktops_[i] = owner.has_value();
                publish();
            }));
}

void ScreenSavers::ownerChanged(std::size_t index, const std::optional<std::string>& owner) {
    Saver& saver = savers_[index];
    saver.owner = owner;
    if (!owner) {
        saver.reading.reset();
        saver.loss = scheduler_.after(nameLossGrace, [this, index] { forget(index); });
        return;
    }
    saver.loss.reset();
    saver.reading = bus_->call({.destination = services[index].name,
                                .path = services[index].path,
                                .interface = services[index].interface,
                                .member = "GetActive"},
                               [this, index](const dbus::Message& answer) {
                                   const auto active = answer.read().boolean();
                                   setActive(index, answer.error() ? std::nullopt : active);
                               });
}

void ScreenSavers::forget(std::size_t index) { setActive(index, std::nullopt); }

void ScreenSavers::setActive(std::size_t index, std::optional<bool> active) {
    savers_[index].active = active;
    publish();
}

std::vector<std::string> ScreenSavers::running() const {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < services.size(); ++i)
        if (savers_[i].owner) names.emplace_back(services[i].name);
    return names;
}

void ScreenSavers::lock(std::function<void()> refused) { askFrom(0, std::move(refused)); }

void ScreenSavers::askFrom(std::size_t index, std::function<void()> refused) {
    while (index < services.size() && !savers_[index].owner)
        ++index;
    if (index == services.size() || bus_ == nullptr) return refused();
    const ScreenSaverService& service = services[index];
    dbus::Call call{.destination = service.name,
                    .path = service.path,
                    .interface = service.interface,
                    .member = "Lock"};
    if (service.lockTakesMessage) call.arguments.emplace_back(std::string());
    asking_ =
        bus_->call(call, [this, index, refused = std::move(refused)](const dbus::Message& answer) {
            // Some answer only once the screen is locked, which may be never: no refusal.
            const auto error = answer.error();
            if (error && *error != "org.freedesktop.DBus.Error.NoReply")
                askFrom(index + 1, refused);
        });
}

void ScreenSavers::publish() {
    std::optional<bool> active;
    for (const Saver& saver : savers_)
        if (!active) active = saver.active;
    if (active != active_.get()) active_.set(active);
    const bool setsHint = hintingDesktops_[0] || hintingDesktops_[1];
    if (setsHint != desktopSetsHint_.get()) desktopSetsHint_.set(setsHint);
}

} // namespace wegslot
