#include "ui/tray_content.h"

#include <algorithm>
#include <array>
#include <utility>

namespace wegslot {
namespace {

// GNOME's top bar is black in both styles, and so are the bars of the tiling compositors unless
// their owner paints them.
constexpr std::array<std::string_view, 6> darkBars{"GNOME",    "Unity", "sway",
                                                   "Hyprland", "i3",    "wlroots"};

} // namespace

TrayContent trayContent(const Phase& phase, Scheme bar, const ClockTime& clockTime) {
    return {.symbol = std::string(symbol(phase)),
            .color = bar == Scheme::dark ? brand::white : brand::navy,
            .text = text(phase, clockTime).translated(),
            .isPaused = is<phase::Snoozed>(phase)};
}

Scheme barScheme(Scheme windows, std::string_view desktop) {
    while (!desktop.empty()) {
        const auto name = desktop.substr(0, desktop.find(':'));
        if (std::ranges::find(darkBars, name) != darkBars.end()) return Scheme::dark;
        desktop.remove_prefix(std::min(desktop.size(), name.size() + 1));
    }
    return windows;
}

TrayPresenter::TrayPresenter(const Observable<Phase>& phase, const Observable<Scheme>& windows,
                             std::string desktop, ClockTime clockTime, Show show)
    : phase_(phase),
      windows_(windows),
      desktop_(std::move(desktop)),
      clockTime_(std::move(clockTime)),
      show_(std::move(show)) {
    present(phase_.get(), windows_.get());
    phases_ = phase_.onChange([this](const Phase& next) { present(next, windows_.get()); });
    schemes_ = windows_.onChange([this](const Scheme& next) { present(phase_.get(), next); });
}

void TrayPresenter::present(const Phase& phase, Scheme windows) const {
    show_(trayContent(phase, barScheme(windows, desktop_), clockTime_));
}

} // namespace wegslot
