// The entries of the icon's menu, in their order: the same whichever kind of icon has it.
#pragma once

#include "base/translation.h"
#include "ui/tray_actions.h"
#include "ui/tray_content.h"

#include <functional>
#include <vector>

namespace wegslot {

struct TrayEntry {
    enum class Shown { always, whilePaused };

    Message label;
    std::function<void()> action;
    Shown shown = Shown::always;

    [[nodiscard]] bool isShown(bool isPaused) const { return shown == Shown::always || isPaused; }
};

[[nodiscard]] std::vector<TrayEntry> trayEntries(const TrayActions& actions);

} // namespace wegslot
