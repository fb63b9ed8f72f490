// What every view of the panel is made with. All of it outlives the views.
#pragma once

#include "base/clock.h"
#include "ui/panel_colors.h"
#include "ui/panel_model.h"
#include "ui/qt/symbol_images.h"

#include <functional>

namespace wegslot {

struct PanelContext {
    PanelModel& model;
    const SymbolImages& images;
    const Observable<Scheme>& scheme;
    const Clock& clock;
    /// Closes the panel by a button of its own; empty where there needs to be none.
    std::function<void()> close = {};

    [[nodiscard]] PanelColors colors() const { return panelColors(scheme.get()); }
};

} // namespace wegslot
