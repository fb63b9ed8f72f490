#include "control/phase_reason.h"

#include "control/reason.h"
#include "monitor/away_message.h"

namespace wegslot {
namespace {

Message said(const char* code) {
    return control::words({.code = code, .arguments = {}}).value_or(Message{});
}

struct ReasonOf {
    const PhaseChange& change;

    Message operator()(const phase::BluetoothUnavailable& phase) const { return phase.text; }
    Message operator()(const phase::Paused& phase) const { return phase.text; }
    Message operator()(const phase::Snoozed&) const {
        return change.snoozeIsManual ? said("pauseAsked") : said("warningCancelled");
    }
    Message operator()(const phase::Warning&) const { return away(); }
    Message operator()(const phase::Disabled&) const { return said("switchedOff"); }
    Message operator()(const phase::NoKeys&) const { return said("noKeys"); }
    Message operator()(const phase::WaitingForReturn&) const {
        if (change.cause == PhaseCause::screen) return said("screenUnlocked");
        if (lockFailed(change.before, change.after, change.cause)) return said("lockNotConfirmed");
        return said("guardBegins");
    }
    Message operator()(const phase::Present&) const { return said("keyNear"); }
    Message operator()(const phase::Leaving&) const { return said("keyNotNear"); }
    Message operator()(const phase::Locked&) const {
        switch (change.cause) {
        case PhaseCause::judgement:
            return away();
        case PhaseCause::request:
            return said("lockAsked");
        case PhaseCause::screen:
            break;
        }
        return said("screenLocked");
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
