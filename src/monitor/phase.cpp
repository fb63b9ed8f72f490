#include "monitor/phase.h"

#include "base/text.h"

namespace wegslot {
namespace {

struct Name {
    std::string_view operator()(const phase::BluetoothUnavailable&) const {
        return "bluetoothUnavailable";
    }

    std::string_view operator()(const phase::Paused&) const { return "paused"; }

    std::string_view operator()(const phase::Snoozed&) const { return "snoozed"; }

    std::string_view operator()(const phase::Warning&) const { return "warning"; }

    std::string_view operator()(const phase::Disabled&) const { return "disabled"; }

    std::string_view operator()(const phase::NoKeys&) const { return "noKeys"; }

    std::string_view operator()(const phase::WaitingForReturn&) const { return "waitingForReturn"; }

    std::string_view operator()(const phase::Present&) const { return "present"; }

    std::string_view operator()(const phase::Leaving&) const { return "leaving"; }

    std::string_view operator()(const phase::Locked&) const { return "locked"; }
};

// By appending: where a literal is put in front of a text that a function returned, GCC 12 at -O3
// warns of an overlap that cannot be (-Wrestrict).
std::string bracketed(std::string_view text) {
    std::string whole = "(";
    whole += text;
    whole += ')';
    return whole;
}

struct Payload {
    Nanoseconds wallOffset;

    std::string operator()(const phase::BluetoothUnavailable& phase) const {
        return bracketed('"' + phase.text.builtIn() + '"');
    }

    std::string operator()(const phase::Paused& phase) const {
        return bracketed('"' + phase.text.builtIn() + '"');
    }

    std::string operator()(const phase::Snoozed& phase) const { return instant(phase.until); }

    std::string operator()(const phase::Warning& phase) const { return instant(phase.deadline); }

    std::string operator()(const auto&) const { return {}; }

    [[nodiscard]] std::string instant(TimePoint steady) const {
        return bracketed(utcText(later(steady, wallOffset)));
    }
};

} // namespace

std::string_view name(const Phase& phase) { return std::visit(Name{}, phase); }

std::string description(const Phase& phase, Nanoseconds wallOffset) {
    return std::string(name(phase)) + std::visit(Payload{wallOffset}, phase);
}

} // namespace wegslot
