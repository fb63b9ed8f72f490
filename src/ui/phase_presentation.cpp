#include "ui/phase_presentation.h"

#include "ui/symbols.h"

#include <variant>

namespace wegslot {
namespace {

struct Look {
    std::string_view symbol;
    Color color;
};

struct LookOf {
    Look operator()(const phase::BluetoothUnavailable&) const {
        return {symbols::lockInTrouble, brand::danger};
    }
    Look operator()(const phase::Paused&) const { return {symbols::pause, brand::lila}; }
    Look operator()(const phase::Snoozed&) const { return {symbols::pause, brand::lila}; }
    Look operator()(const phase::Warning&) const { return {symbols::walking, brand::orange}; }
    Look operator()(const phase::Disabled&) const { return {symbols::slashedLock, brand::lila}; }
    Look operator()(const phase::NoKeys&) const { return {symbols::lockInTrouble, brand::lila}; }
    Look operator()(const phase::WaitingForReturn&) const {
        return {symbols::hourglass, brand::lila};
    }
    Look operator()(const phase::Present&) const { return {symbols::openLock, brand::success}; }
    Look operator()(const phase::Leaving&) const { return {symbols::walking, brand::orange}; }
    Look operator()(const phase::Locked&) const { return {symbols::lock, brand::navy}; }
};

struct TextOf {
    const ClockTime& clockTime;

    std::string operator()(const phase::BluetoothUnavailable& phase) const { return phase.text; }
    std::string operator()(const phase::Paused& phase) const { return "Pauze: " + phase.text; }
    std::string operator()(const phase::Snoozed& phase) const {
        return "Gepauzeerd tot " + clockTime(phase.until);
    }
    // The countdown is on the warning panel alone.
    std::string operator()(const phase::Warning&) const { return "Lockt zo"; }
    std::string operator()(const phase::Disabled&) const { return "Uitgeschakeld"; }
    std::string operator()(const phase::NoKeys&) const { return "Kies een sleutel om te beginnen"; }
    std::string operator()(const phase::WaitingForReturn&) const {
        return "Wacht tot je sleutel in de buurt is";
    }
    std::string operator()(const phase::Present&) const { return "Je bent in de buurt"; }
    std::string operator()(const phase::Leaving&) const { return "Signaal zwak, even afwachten"; }
    std::string operator()(const phase::Locked&) const { return "Gelockt"; }
};

} // namespace

std::string_view symbol(const Phase& phase) { return std::visit(LookOf{}, phase).symbol; }

Color color(const Phase& phase) { return std::visit(LookOf{}, phase).color; }

std::string text(const Phase& phase, const ClockTime& clockTime) {
    return std::visit(TextOf{clockTime}, phase);
}

} // namespace wegslot
