// The older kind of status icon: a window that an X11 panel takes in. Only where nobody takes the
// item on the bus; see `tray_choice.h`.
#pragma once

#include "ui/tray_actions.h"
#include "ui/tray_content.h"
#include "ui/tray_entries.h"

#include <QMenu>
#include <QSystemTrayIcon>

#include <vector>

namespace wegslot {

class SymbolImages;

class X11Tray {
public:
    /// `images` must outlive this. Nothing is shown yet.
    X11Tray(const SymbolImages& images, TrayActions actions);
    X11Tray(const X11Tray&) = delete;
    X11Tray& operator=(const X11Tray&) = delete;

    /// Whether a panel takes such windows now. To be asked again when it matters.
    [[nodiscard]] static bool isThere();

    void show(const TrayContent& content);
    void hide() { icon_.hide(); }
    [[nodiscard]] bool isShown() const { return icon_.isVisible(); }

private:
    void showEntries(bool isPaused);
    void clicked(QSystemTrayIcon::ActivationReason reason) const;

    const SymbolImages& images_;
    TrayActions actions_;
    std::vector<TrayEntry> entries_;
    QMenu menu_;
    QSystemTrayIcon icon_;
};

} // namespace wegslot
