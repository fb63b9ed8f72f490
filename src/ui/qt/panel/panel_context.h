// What every view of the panel is made with. All of it outlives the views.
#pragma once

#include "base/clock.h"
#include "ui/panel_colors.h"
#include "ui/panel_model.h"
#include "ui/qt/symbol_images.h"

namespace wegslot {

struct PanelContext {
    PanelModel& model;
    const SymbolImages& images;
    const Observable<Scheme>& scheme;
    const Clock& clock;

    [[nodiscard]] PanelColors colors() const { return panelColors(scheme.get()); }
};

} // namespace wegslot
