// The foot of the panel: lock, pause, log and quit.
#pragma once

#include "ui/qt/panel/menu_button.h"
#include "ui/qt/panel/panel_button.h"
#include "ui/qt/panel/panel_context.h"

#include <QHBoxLayout>

#include <vector>

namespace wegslot {

class FooterView final : public QWidget {
public:
    explicit FooterView(const PanelContext& context);

    void show(const panel::Footer& footer);
    using QWidget::show;

private:
    PanelContext context_;
    PanelButton lock_;
    MenuButton pause_;
    PanelButton resume_;
    PanelButton log_;
    PanelButton quit_;
    std::vector<Seconds> pauses_;
    QHBoxLayout layout_{this};
};

} // namespace wegslot
