// The application's panel, made when it is first opened.
#pragma once

#include "app/qt/appearance.h"
#include "base/scheduler.h"
#include "core/app_model.h"
#include "model/remembered.h"
#include "ui/login_item.h"
#include "ui/panel_model.h"
#include "ui/qt/panel/panel_window.h"
#include "ui/tray_actions.h"

#include <functional>
#include <optional>
#include <string>

namespace wegslot {

class MenuPanel {
public:
    /// All must outlive the panel.
    struct Parts {
        AppModel& model;
        const Appearance& appearance;
        const Clock& clock;
        Scheduler& scheduler;
        LoginItem& loginItem;
        Remembered& remembered;
        std::function<void()> openLog;
        std::function<void()> quit;
        std::function<void()> couple;
        bool stays = false; ///< whatever else is clicked
    };

    explicit MenuPanel(Parts parts) : parts_(std::move(parts)) {}

    /// What the icon's click does: opens it there, or closes it.
    void toggle(const TrayClick& click);

    /// `activationToken`: what lets it take the focus on Wayland; empty for none.
    void open(const std::string& activationToken = {});

private:
    [[nodiscard]] PanelWindow& window();
    [[nodiscard]] PanelHost host() const;

    Parts parts_;
    std::optional<PanelWindow> window_;
};

/// What a panel is about.
[[nodiscard]] PanelModel::Objects panelObjects(const MenuPanel::Parts& parts);

} // namespace wegslot
