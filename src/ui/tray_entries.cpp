#include "ui/tray_entries.h"

namespace wegslot {

std::vector<TrayEntry> trayEntries(const TrayActions& actions) {
    const auto pausing = [&actions](Seconds duration) {
        return [pause = actions.pause, duration] { pause(duration); };
    };
    return {{"Open Wegslot", [open = actions.open] { open({.at = std::nullopt}); }},
            {"Nu locken", actions.lock},
            {"Hervat", actions.resume, TrayEntry::Shown::whilePaused},
            {"Pauzeer 15 minuten", pausing(Seconds{900})},
            {"Pauzeer 1 uur", pausing(Seconds{3600})},
            {"Pauzeer tot 06:00", actions.pauseUntilMorning},
            {"Stop", actions.quit}};
}

} // namespace wegslot
