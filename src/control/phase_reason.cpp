#include "control/phase_reason.h"

#include "monitor/away_message.h"

namespace wegslot {
namespace {

struct ReasonOf {
    const PhaseChange& change;

    Message operator()(const phase::BluetoothUnavailable& phase) const { return phase.text; }
    Message operator()(const phase::Paused& phase) const { return phase.text; }
    Message operator()(const phase::Snoozed&) const {
        return change.snoozeIsManual ? message("Pauze gevraagd")
                                     : message("Waarschuwing geannuleerd");
    }
    Message operator()(const phase::Warning&) const { return away(); }
    Message operator()(const phase::Disabled&) const { return message("Bewaking uitgezet"); }
    Message operator()(const phase::NoKeys&) const { return message("Geen sleutels"); }
    Message operator()(const phase::WaitingForReturn&) const {
        if (change.cause == PhaseCause::screen) return message("Scherm ontgrendeld");
        if (lockFailed(change.before, change.after, change.cause))
            return message("Geen bevestiging van lock ontvangen");
        return message("Bewaking begint");
    }
    Message operator()(const phase::Present&) const { return message("Sleutel in de buurt"); }
    Message operator()(const phase::Leaving&) const {
        return message("Sleutel niet meer dichtbij");
    }
    Message operator()(const phase::Locked&) const {
        switch (change.cause) {
        case PhaseCause::judgement:
            return away();
        case PhaseCause::request:
            return message("Lock gevraagd");
        case PhaseCause::screen:
            break;
        }
        return message("Scherm gelockt");
    }

    [[nodiscard]] Message away() const { return awayMessage(change.keys, change.states); }
};

} // namespace

bool lockFailed(const Phase& before, const Phase& after, PhaseCause cause) {
    return is<phase::Locked>(before) && is<phase::WaitingForReturn>(after) &&
           cause != PhaseCause::screen;
}

Message phaseReason(const PhaseChange& change) {
    return std::visit(ReasonOf{change}, change.after);
}

} // namespace wegslot
