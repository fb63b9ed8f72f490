#include "ui/linux/bluetooth_settings.h"

#include <algorithm>
#include <array>

namespace wegslot {
namespace {

struct Window {
    std::string_view desktop; ///< the only one on which it opens; empty for any
    std::vector<std::string> words;
};

// A desktop's own, then what opens on all of them. GNOME's refuses to open elsewhere.
const std::array<Window, 8>& windows() {
    static const std::array<Window, 8> list{{
        {"GNOME", {"gnome-control-center", "bluetooth"}},
        {"Unity", {"gnome-control-center", "bluetooth"}},
        {"Budgie", {"budgie-control-center", "bluetooth"}},
        {"COSMIC", {"cosmic-settings", "bluetooth"}},
        {"KDE", {"kcmshell6", "kcm_bluetooth"}},
        {"KDE", {"kcmshell5", "kcm_bluetooth"}},
        {"", {"blueman-manager"}},
        {"", {"blueberry"}},
    }};
    return list;
}

bool isOn(std::string_view name, std::string_view desktop) {
    while (!desktop.empty()) {
        const auto one = desktop.substr(0, desktop.find(':'));
        if (one == name) return true;
        desktop.remove_prefix(std::min(desktop.size(), one.size() + 1));
    }
    return false;
}

} // namespace

std::vector<std::vector<std::string>> bluetoothSettings(std::string_view desktop) {
    std::vector<std::vector<std::string>> programs;
    for (const Window& window : windows())
        if (window.desktop.empty() || isOn(window.desktop, desktop))
            programs.push_back(window.words);
    return programs;
}

} // namespace wegslot
