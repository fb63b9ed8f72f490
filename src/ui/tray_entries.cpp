#include "ui/tray_entries.h"

namespace wegslot {

std::vector<TrayEntry> trayEntries(const TrayActions& actions) {
    const auto pausing = [&actions](Seconds duration) {
        return [pause = actions.pause, duration] { pause(duration); };
    };
    return {{message("Open Wegslot"), [open = actions.open] { open({.at = std::nullopt}); }},
            {message("Nu locken"), actions.lock},
            {message("Hervat"), actions.resume, TrayEntry::Shown::whilePaused},
            {message("Pauzeer 15 minuten"), pausing(Seconds{900})},
            {message("Pauzeer 1 uur"), pausing(Seconds{3600})},
            {message("Pauzeer tot 06:00"), actions.pauseUntilMorning},
            {message("Apparaat koppelen"), actions.couple},
            {message("Inzicht"), actions.insight},
            {message("Stop"), actions.quit}};
}

} // namespace wegslot
