// Couples a device in a window, made when it is asked for and gone when it is closed.
#pragma once

#include "app/qt/appearance.h"
#include "core/app_model.h"
#include "coupling/coupling.h"
#include "ui/qt/coupling/coupling_window.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace wegslot {

class CouplingAssistant {
public:
    using Paste =
        std::function<std::optional<Failure>(const std::string& name, std::string_view pasted)>;

    /// All must outlive it.
    /// `paste`: see `Coupling::World`.
    CouplingAssistant(coupling::CouplingRadio& radio, AppModel& model, const Appearance& appearance,
                      const Clock& clock, Scheduler& scheduler, Paste paste)
        : radio_(radio),
          model_(model),
          appearance_(appearance),
          clock_(clock),
          scheduler_(scheduler),
          paste_(std::move(paste)) {}
    CouplingAssistant(const CouplingAssistant&) = delete;
    CouplingAssistant& operator=(const CouplingAssistant&) = delete;
    ~CouplingAssistant();

    /// Opens the window, or brings it forward. That is all that comes of it: any program may ask.
    void open();

private:
    coupling::CouplingRadio& radio_;
    AppModel& model_;
    const Appearance& appearance_;
    const Clock& clock_;
    Scheduler& scheduler_;
    Paste paste_;
    std::optional<coupling::Coupling> coupling_;
    std::optional<CouplingWindow> window_;
    Subscription steps_;
    Timer ending_;
};

/// Closes it and runs an event loop until all is put back, eight seconds at most: a phone's link
/// takes five to end where it hangs, and its bond two more. For a program that was asked to end.
void putBack(coupling::Coupling& coupling, Scheduler& scheduler);

/// What it takes to couple with a core that runs.
[[nodiscard]] coupling::Coupling::World couplingWorld(coupling::CouplingRadio& radio,
                                                      AppModel& model, const Clock& clock,
                                                      Scheduler& scheduler);

} // namespace wegslot
