#include "ui/linux/color_scheme.h"

#include <cstdint>
#include <string_view>

namespace wegslot {
namespace {

constexpr auto service = "org.freedesktop.portal.Desktop";
constexpr auto path = "/org/freedesktop/portal/desktop";
constexpr auto interface = "org.freedesktop.portal.Settings";
constexpr auto group = "org.freedesktop.appearance";
constexpr auto key = "color-scheme";

/// 1 dark, 2 light, 0 and whatever else no preference; in one variant, from `Read` in two.
std::optional<Scheme> schemeIn(dbus::Reader& reader) {
    std::optional<std::int64_t> number;
    reader.variant([&number](dbus::Reader& outer) {
        const auto take = [&number](dbus::Reader& value) { number = value.integer(); };
        if (!outer.variant(take)) take(outer);
    });
    if (number == 1) return Scheme::dark;
    if (number == 2) return Scheme::light;
    return std::nullopt;
}

} // namespace

ColorScheme::ColorScheme(dbus::Connection& sessionBus, const Observable<Scheme>& palette)
    : palette_(palette),
      scheme_(palette.get()) {
    paletteChanges_ = palette_.onChange([this](const Scheme& next) { publish(next); });
    connection_ = sessionBus.bus().follow([this](dbus::Bus* bus) { busChanged(bus); });
}

void ColorScheme::busChanged(dbus::Bus* bus) {
    reading_.reset();
    changes_.reset();
    owner_.reset();
    bus_ = bus;
    prefer(std::nullopt);
    if (bus == nullptr) return;
    changes_ = bus->onSignal(service,
                             {.interface = interface,
                              .member = "SettingChanged",
                              .path = path,
                              .arg0 = group,
                              .arg1 = key},
                             [this](const dbus::Message& signal) {
                                 auto reader = signal.read();
                                 static_cast<void>(reader.text());
                                 static_cast<void>(reader.text());
                                 reading_.reset(); // the answer to come may be the older one
                                 prefer(schemeIn(reader));
                             });
    owner_ = bus->followOwner(
        service, [this](const std::optional<std::string>& owner) { ownerChanged(owner); });
}

void ColorScheme::ownerChanged(const std::optional<std::string>& owner) {
    reading_.reset();
    if (!owner) return prefer(std::nullopt);
    read("ReadOne");
}

void ColorScheme::read(const char* method) {
    reading_ = bus_->call({.destination = service,
                           .path = path,
                           .interface = interface,
                           .member = method,
                           .arguments = {std::string(group), std::string(key)}},
                          [this, method](const dbus::Message& answer) {
                              // Portals before 1.17 know the older question only.
                              if (answer.error() && std::string_view(method) == "ReadOne")
                                  return read("Read");
                              auto reader = answer.read();
                              prefer(answer.error() ? std::nullopt : schemeIn(reader));
                          });
}

void ColorScheme::prefer(std::optional<Scheme> preference) {
    preferred_ = preference;
    publish(palette_.get());
}

void ColorScheme::publish(Scheme palette) {
    const Scheme scheme = preferred_.value_or(palette);
    if (scheme != scheme_.get()) scheme_.set(scheme);
}

} // namespace wegslot
