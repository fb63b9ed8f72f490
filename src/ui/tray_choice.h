// Which of the two kinds of status icon the desktop gets. An item on the bus comes first; the
// older kind, a small window that an X11 panel takes in, is for panels that know nothing else.
#pragma once

namespace wegslot {

enum class TrayKind { none, item, window };

struct TraySurroundings {
    bool itemIsTaken = false;   ///< somebody collects items and has taken ours
    bool isX11Session = false;  ///< windows are the X server's own, not a compositor's guests
    bool hasWindowTray = false; ///< a panel takes windows in (owns _NET_SYSTEM_TRAY_S0)
};

[[nodiscard]] constexpr TrayKind trayKind(const TraySurroundings& around) {
    if (around.itemIsTaken) return TrayKind::item;
    // In a Wayland session the owner can only be some program's leftover: nobody would see it.
    if (around.isX11Session && around.hasWindowTray) return TrayKind::window;
    return TrayKind::none;
}

} // namespace wegslot
