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

    Message operator()(const phase::BluetoothUnavailable& phase) const { return phase.text; }
    Message operator()(const phase::Paused& phase) const {
        return message("Pauze: %1", {phase.text});
    }
    Message operator()(const phase::Snoozed& phase) const {
        return message("Gepauzeerd tot %1", {clockTime(phase.until)});
    }
    // The countdown is on the warning panel alone.
    Message operator()(const phase::Warning&) const { return message("Lockt zo"); }
    Message operator()(const phase::Disabled&) const { return message("Uitgeschakeld"); }
    Message operator()(const phase::NoKeys&) const {
        return message("Kies een sleutel om te beginnen");
    }
    Message operator()(const phase::WaitingForReturn&) const {
        return message("Wacht tot je sleutel in de buurt is");
    }
    Message operator()(const phase::Present&) const { return message("Je bent in de buurt"); }
    Message operator()(const phase::Leaving&) const {
        return message("Signaal zwak, even afwachten");
    }
    Message operator()(const phase::Locked&) const { return message("Gelockt"); }
};

} // namespace

std::string_view symbol(const Phase& phase) { return std::visit(LookOf{}, phase).symbol; }

Color color(const Phase& phase) { return std::visit(LookOf{}, phase).color; }

Message text(const Phase& phase, const ClockTime& clockTime) {
    return std::visit(TextOf{clockTime}, phase);
}

} // namespace wegslot
