// The head of the panel: the phase as a symbol and in words, and the main switch.
#pragma once

#include "ui/qt/panel/panel_button.h"
#include "ui/qt/panel/panel_context.h"
#include "ui/qt/panel/small_parts.h"
#include "ui/qt/panel/text.h"
#include "ui/qt/panel/toggles.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace wegslot {

class HeaderView final : public QWidget {
public:
    explicit HeaderView(const PanelContext& context);

    void show(const panel::Header& header);
    using QWidget::show;

private:
    PanelContext context_;
    SymbolView tile_;
    Text name_;
    Dot dot_;
    Text status_;
    Switch enabled_;
    PanelButton close_;
    QHBoxLayout layout_{this};
    QVBoxLayout texts_;
    QHBoxLayout line_;
};

} // namespace wegslot
