#include "control/control_status.h"

#include "control/phase_reason.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>

namespace wegslot::control {
namespace {

std::optional<std::int64_t> pausedUntil(const Phase& phase, const Clock& clock) {
    const auto* const snoozed = std::get_if<phase::Snoozed>(&phase);
    if (snoozed == nullptr) return std::nullopt;
    const Nanoseconds ahead = clock.wallClock() - clock.now();
    const auto until = later(snoozed->until, ahead).time_since_epoch();
    return std::chrono::duration_cast<std::chrono::seconds>(until).count();
}

std::string kindOf(const SeenDevice& device) {
    SeenDevice nameless = device;
    nameless.name.reset();
    return nameless.displayName().builtIn();
}

std::optional<std::uint32_t> secondsIn(std::string_view unit) {
    if (unit.empty() || unit == "s" || unit == "sec") return 1;
    if (unit == "m" || unit == "min") return 60;
    if (unit == "h" || unit == "u" || unit == "uur") return 3600;
    return std::nullopt;
}

} // namespace

Status status(const Sources& sources, const Phase& phase, const Reason& reason) {
    Status status{.phase = std::string(name(phase)),
                  .text = text(phase, sources.clockTime).builtIn(),
                  .reason = reason,
                  .pausedUntil = pausedUntil(phase, sources.clock),
                  .keys = {}};
    const KeyStates& states = sources.monitor.keyStates().get();
    for (const KeyDevice& key : sources.settings.keys.get()) {
        const auto state = states.find(key.id);
        status.keys.push_back(
            {.id = key.id.text(),
             .name = key.name,
             .state = std::string(name(state == states.end() ? KeyState::away : state->second)),
             .rssi = sources.scanner.smoothedRSSI(key.id),
             .threshold = key.threshold});
    }
    return status;
}

Nearby nearby(const Scanner& scanner, bool others) {
    Nearby nearby{.radio = scanner.isPoweredOn() ? "" : scanner.stateDescription().builtIn(),
                  .includesOthers = scanner.includeOtherDevices(),
                  .devices = {}};
    for (const SeenDevice& device : scanner.snapshot().get()) {
        if (nearby.devices.size() == mostDevices) break;
        if (!others && !device.isApple() && !scanner.watchedIDs().contains(device.id)) continue;
        nearby.devices.push_back({.id = device.id.text(),
                                  .name = device.name,
                                  .kind = kindOf(device),
                                  .rssi = device.rssi,
                                  .changesAddress = scanner.changesAddress(device.id)});
    }
    return nearby;
}

Change change(const Sources& sources, const Phase& next) {
    const Message why = phaseReason({.before = sources.monitor.phase().get(),
                                     .after = next,
                                     .cause = sources.monitor.cause(),
                                     .snoozeIsManual = sources.monitor.snoozeIsManual().get(),
                                     .keys = sources.settings.keys.get(),
                                     .states = sources.monitor.keyStates().get()});
    return {.phase = std::string(name(next)),
            .text = text(next, sources.clockTime).builtIn(),
            .why = why.builtIn(),
            .reason = reasonOf(why),
            .pausedUntil = pausedUntil(next, sources.clock)};
}

Result<std::uint32_t> pauseDuration(std::string_view text) {
    std::string written(text);
    std::ranges::replace(written, ',', '.');
    double number = 0;
    const char* const begin = written.data();
    const char* const end = begin + written.size();
    const bool isNumber = !written.empty() && written.front() >= '0' && written.front() <= '9';
    const auto [rest, fault] = std::from_chars(begin, end, number, std::chars_format::fixed);
    std::string_view unitText(rest, end);
    while (unitText.starts_with(' '))
        unitText.remove_prefix(1);
    const auto unit = secondsIn(unitText);
    if (!isNumber || !unit)
        return Failure{message("geen geldige duur: %1 (bijvoorbeeld 15m, 90s, 1,5u of 2h)",
                               {std::string(text)})};
    // What does not fit in the number is too long whatever the unit.
    const double seconds = fault == std::errc{} ? std::round(number * *unit) : longestPause + 1.0;
    const auto whole = static_cast<std::uint32_t>(std::min(seconds, longestPause + 1.0));
    if (const auto failure = pauseFault(whole)) return *failure;
    return whole;
}

std::optional<Failure> pauseFault(std::uint32_t seconds) {
    if (seconds >= 1 && seconds <= longestPause) return std::nullopt;
    return Failure{message("een pauze duurt 1 tot %1 seconden", {std::to_string(longestPause)})};
}

} // namespace wegslot::control
