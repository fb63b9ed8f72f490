// What every part of the window is made with. All of it outlives them.
#pragma once

#include "base/observable.h"
#include "ui/panel_colors.h"
#include "ui/qt/symbol_images.h"

namespace wegslot::insight {

struct Surroundings {
    const SymbolImages& images;
    const Observable<Scheme>& scheme;

    [[nodiscard]] PanelColors colors() const { return panelColors(scheme.get()); }
};

} // namespace wegslot::insight
