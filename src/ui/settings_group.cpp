#include "ui/settings_group.h"

#include "base/translation.h"
#include "ui/whole_number.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

namespace wegslot::panel {
namespace {

/// `wording` has a place for the number of seconds, which is drawn apart.
Stepper stepper(Delay delay, Seconds value, const Message& wording) {
    constexpr std::string_view place = "%1";
    const std::string text = wording.translated();
    const std::size_t before = text.find(place);
    const std::size_t after = std::min(before, text.size() - place.size()) + place.size();
    const DelayRange range = rangeOf(delay);
    const Seconds known = std::isnan(value.count()) ? Seconds{0} : value;
    return {.delay = delay,
            .before = text.substr(0, before),
            .value = wholeNumber(known.count()),
            .after = text.substr(after),
            .canDecrease = known > range.lowest,
            .canIncrease = known < range.highest};
}

Stepper countdownStepper(const Settings& settings) {
    Stepper part = stepper(Delay::warningSeconds, settings.warningSeconds.get(),
                           message("Aftellen vanaf %1 s"));
    part.isIndented = true;
    part.isShown = settings.warningEnabled.get();
    return part;
}

} // namespace

SettingsGroup settingsGroup(const Settings& settings, bool isOpen, bool launchAtLogin,
                            const UpdateFacts& update) {
    return {.title = translated("Instellingen"),
            .isOpen = isOpen,
            .parts = {
                stepper(Delay::awayDelay, settings.awayDelay.get(),
                        message("Weg na %1 s zwak signaal")),
                stepper(Delay::lostTimeout, settings.lostTimeout.get(),
                        message("Weg na %1 s geen signaal")),
                Divider{},
                Toggle{.choice = Choice::warningEnabled,
                       .text = translated("Waarschuw voordat je Mac lockt"),
                       .tooltip = {},
                       .isOn = settings.warningEnabled.get()},
                countdownStepper(settings),
                Toggle{.choice = Choice::pauseDuringMeetings,
                       .text = translated("Niet locken tijdens videobellen"),
                       .tooltip = translated("Pauzeert als je camera of microfoon in gebruik is"),
                       .isOn = settings.pauseDuringMeetings.get()},
                Toggle{.choice = Choice::pauseWhileActive,
                       .text = translated("Niet locken als je je Mac gebruikt"),
                       .tooltip = translated(
                           "Pauzeert als je de afgelopen 10 seconden typte of de muis bewoog"),
                       .isOn = settings.pauseWhileActive.get()},
                Toggle{.choice = Choice::launchAtLogin,
                       .text = translated("Start bij inloggen"),
                       .tooltip = {},
                       .isOn = launchAtLogin},
                Divider{},
                versionBlock(update),
            }};
}

DelayRange rangeOf(Delay delay) {
    switch (delay) {
    case Delay::awayDelay:
        return awayDelayChoice;
    case Delay::lostTimeout:
        return lostTimeoutChoice;
    case Delay::warningSeconds:
        break;
    }
    return warningSecondsChoice;
}

Setting<Seconds>& settingOf(Settings& settings, Delay delay) {
    switch (delay) {
    case Delay::awayDelay:
        return settings.awayDelay;
    case Delay::lostTimeout:
        return settings.lostTimeout;
    case Delay::warningSeconds:
        break;
    }
    return settings.warningSeconds;
}

Seconds stepped(Seconds value, const DelayRange& range, Step step) {
    const Seconds known = std::isnan(value.count()) ? Seconds{0} : value;
    const Seconds moved = step == Step::up ? known + range.step : known - range.step;
    return std::clamp(moved, range.lowest, range.highest);
}

std::optional<Seconds> typedSeconds(std::string_view typed, const DelayRange& range) {
    const auto isBlank = [](char sign) { return sign == ' '; };
    while (!typed.empty() && isBlank(typed.front()))
        typed.remove_prefix(1);
    while (!typed.empty() && isBlank(typed.back()))
        typed.remove_suffix(1);
    const char* const end = typed.data() + typed.size();
    long long number = 0;
    const auto [read, error] = std::from_chars(typed.data(), end, number);
    if (read != end || error == std::errc::invalid_argument) return std::nullopt;
    if (error == std::errc::result_out_of_range)
        return typed.starts_with('-') ? range.lowest : range.highest;
    return std::clamp(Seconds{static_cast<double>(number)}, range.lowest, range.highest);
}

} // namespace wegslot::panel
