#include "control/phase_reason.h"

#include "monitor/away_message.h"

namespace wegslot {
namespace {

struct ReasonOf {
    const PhaseChange& change;

    std::string operator()(const phase::BluetoothUnavailable& phase) const { return phase.text; }
    std::string operator()(const phase::Paused& phase) const { return phase.text; }
    std::string operator()(const phase::Snoozed&) const {
        return change.snoozeIsManual ? "Pauze gevraagd" : "Waarschuwing geannuleerd";
    }
    std::string operator()(const phase::Warning&) const { return away(); }
    std::string operator()(const phase::Disabled&) const { return "Bewaking uitgezet"; }
    std::string operator()(const phase::NoKeys&) const { return "Geen sleutels"; }
    std::string operator()(const phase::WaitingForReturn&) const {
        if (change.cause == PhaseCause::screen) return "Scherm ontgrendeld";
        if (lockFailed(change.before, change.after, change.cause))
            return "Geen bevestiging van lock ontvangen";
        return "Bewaking begint";
    }
    std::string operator()(const phase::Present&) const { return "Sleutel in de buurt"; }
    std::string operator()(const phase::Leaving&) const { return "Sleutel niet meer dichtbij"; }
    std::string operator()(const phase::Locked&) const {
        switch (change.cause) {
        case PhaseCause::judgement:
            return away();
        case PhaseCause::request:
            return "Lock gevraagd";
        case PhaseCause::screen:
            break;
        }
        return "Scherm gelockt";
    }

    [[nodiscard]] std::string away() const { return awayMessage(change.keys, change.states); }
};

} // namespace

bool lockFailed(const Phase& before, const Phase& after, PhaseCause cause) {
    return is<phase::Locked>(before) && is<phase::WaitingForReturn>(after) &&
           cause != PhaseCause::screen;
}

std::string phaseReason(const PhaseChange& change) {
    return std::visit(ReasonOf{change}, change.after);
}

} // namespace wegslot
