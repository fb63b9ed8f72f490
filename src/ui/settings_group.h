// The settings in the panel: steppers and checkboxes in their order, with the version at the end.
// The list always has the same parts in the same places; parts that are not shown say so.
#pragma once

#include "model/choice_range.h"
#include "model/settings.h"
#include "ui/panel_parts.h"
#include "ui/update_presentation.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace wegslot::panel {

struct Divider {
    friend bool operator==(const Divider&, const Divider&) = default;
};

using SettingsPart = std::variant<Stepper, Toggle, Divider, VersionBlock>;

struct SettingsGroup {
    std::string title; ///< of a section
    bool isOpen = false;
    std::vector<SettingsPart> parts;

    friend bool operator==(const SettingsGroup&, const SettingsGroup&) = default;
};

[[nodiscard]] SettingsGroup settingsGroup(const Settings& settings, bool isOpen, bool launchAtLogin,
                                          const UpdateFacts& update);

/// What a stepper goes through.
using DelayRange = ChoiceRange<Seconds>;

[[nodiscard]] DelayRange rangeOf(Delay delay);

/// The setting behind a stepper.
[[nodiscard]] Setting<Seconds>& settingOf(Settings& settings, Delay delay);

enum class Step { down, up };

/// One step from `value` (any double; NaN counts as 0), within the range: what lies outside it
/// comes in with the first step.
[[nodiscard]] Seconds stepped(Seconds value, const DelayRange& range, Step step);

/// What somebody types: whole seconds, brought within the range and not onto its steps. Nothing
/// for what is no whole number.
[[nodiscard]] std::optional<Seconds> typedSeconds(std::string_view typed, const DelayRange& range);

} // namespace wegslot::panel
