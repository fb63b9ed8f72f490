// What the status icon shows: the phase's symbol alone, and its text for the tooltip. The symbol
// has no colour of its own; it is drawn so that it stands out from the desktop's bar.
#pragma once

#include "base/observable.h"
#include "ui/brand.h"
#include "ui/phase_presentation.h"
#include "ui/scheme.h"

#include <functional>
#include <string>
#include <string_view>

namespace wegslot {

struct TrayContent {
    std::string symbol;
    Color color;
    std::string text;
    bool isPaused = false; ///< by the user, who can end it

    friend bool operator==(const TrayContent&, const TrayContent&) = default;
};

/// `bar`: whether the bar that the icon stands on is light or dark.
[[nodiscard]] TrayContent trayContent(const Phase& phase, Scheme bar, const ClockTime& clockTime);

/// Whether the bar is light or dark, where windows are as `windows` says. `desktop` is
/// XDG_CURRENT_DESKTOP; some desktops keep their bar dark whatever the windows are.
[[nodiscard]] Scheme barScheme(Scheme windows, std::string_view desktop);

/// Shows the content anew with each phase and each change between light and dark.
class TrayPresenter {
public:
    using Show = std::function<void(const TrayContent&)>;

    /// Shows the first content at once. What is observed must outlive this.
    TrayPresenter(const Observable<Phase>& phase, const Observable<Scheme>& windows,
                  std::string desktop, ClockTime clockTime, Show show);

private:
    void present(const Phase& phase, Scheme windows) const;

    const Observable<Phase>& phase_;
    const Observable<Scheme>& windows_;
    std::string desktop_;
    ClockTime clockTime_;
    Show show_;
    Subscription phases_;
    Subscription schemes_;
};

} // namespace wegslot
