// The window "Inzicht" over what is kept: a process of its own, beside a Wegslot that guards and
// without one, so that nobody who judges waits for a past that is drawn or judged anew.
#pragma once

#include "app/qt/appearance.h"
#include "app/qt/bus_pump.h"
#include "base/qt/qt_background.h"
#include "dbus/forgeries.h"
#include "insight/insight_model.h"
#include "insight/qt/insight_window.h"

#include <filesystem>
#include <string>

namespace wegslot {

class Insight {
public:
    /// `names` are those of the keys by row.
    Insight(Scheduler& scheduler, const Clock& clock, std::filesystem::path file,
            insight::Names names);

private:
    [[nodiscard]] insight::InsightModel::Requests requests();
    void showKept();
    void load(insight::Day day);
    void explain(std::size_t event);
    void judge(std::size_t event, history::Opinion::Of opinion);

    std::filesystem::path file_;
    insight::Names names_;
    dbus::Forgeries forgeries_;
    dbus::Connection sessionBus_;
    Appearance appearance_;
    insight::InsightModel model_;
    insight::InsightWindow window_;
    QtBackground background_;
    Handle explaining_;
};

} // namespace wegslot
