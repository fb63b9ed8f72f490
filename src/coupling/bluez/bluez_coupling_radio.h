// BlueZ as the radio on which this computer appears as a peripheral. Each time has a connection to
// the bus of its own, so that nothing of it outlives its end; what would, is noted and put back.
#pragma once

#include "base/delayed_calls.h"
#include "coupling/bluez/later_removal.h"
#include "coupling/bluez/stay.h"
#include "coupling/coupling_radio.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace wegslot::coupling {

class BluezCouplingRadio final : public CouplingRadio {
public:
    /// Has whoever else uses the radio leave it alone until the handle ends.
    using Borrow = std::function<Handle()>;

    /// `open` and `attach` make connections to the system bus; `note` is the file that says what a
    /// killed program has left behind. All must outlive the radio.
    BluezCouplingRadio(dbus::Connection::Open open, dbus::Connection::Attach attach,
                       Scheduler& scheduler, bluez::Links& links, Borrow borrow,
                       std::filesystem::path note);
    ~BluezCouplingRadio() override;

    /// Puts back what an earlier run left behind, if it was killed. For the one that runs: who only
    /// looks would spoil what another has under way.
    void putBack();

    void setListener(CouplingListener* listener) override { world_.tell.setListener(listener); }
    void appear(const std::string& name, Confirmation confirmation) override;
    void askForBond() override;
    void answer(bool same) override;
    void forget() override;
    void disappear() override;

private:
    void over();
    void removed();

    PairableNote note_;
    StayWorld world_;
    Borrow borrow_;
    Handle loan_;
    std::unique_ptr<Stay> stay_;
    std::optional<dbus::Call> visitor_; ///< what has it forgotten, who bonded last
    std::optional<dbus::Call> removing_;
    std::unique_ptr<LaterRemoval> removal_; ///< by `removing_`
    bool isAwaited_ = false;                ///< that removal
    std::unique_ptr<PairableRepair> repair_;
    DelayedCalls delayed_;
    Timer repaired_;
};

} // namespace wegslot::coupling
