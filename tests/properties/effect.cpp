#include "tests/properties/effect.h"

#include <cmath>

namespace wegslot {
namespace {

std::string instant(TimePoint point) { return std::to_string(point.time_since_epoch().count()); }

struct Text {
    std::string operator()(const effect::Logged& logged) const { return "log " + logged.message; }

    std::string operator()(const effect::PhaseSet& set) const { return "phase " + text(set.phase); }

    std::string operator()(const effect::StatesSet& set) const {
        return "states " + text(set.states);
    }

    std::string operator()(const effect::PanelShown& shown) const {
        return "panel shown until " + instant(shown.deadline) + " of " +
               std::to_string(shown.total.count()) + ": " + shown.message;
    }

    std::string operator()(const effect::PanelHidden&) const { return "panel hidden"; }

    std::string operator()(const effect::LockRequested&) const { return "lock"; }
};

} // namespace

namespace effect {

bool operator==(const PanelShown& a, const PanelShown& b) {
    const bool neitherIsNumber = std::isnan(a.total.count()) && std::isnan(b.total.count());
    return a.deadline == b.deadline && a.message == b.message &&
           (neitherIsNumber || a.total == b.total);
}

} // namespace effect

std::string text(const Effect& effect) { return std::visit(Text{}, effect); }

std::string text(const Phase& phase) {
    if (const auto* snoozed = std::get_if<phase::Snoozed>(&phase))
        return "snoozed until " + instant(snoozed->until);
    if (const auto* warning = std::get_if<phase::Warning>(&phase))
        return "warning until " + instant(warning->deadline);
    return description(phase, Nanoseconds{0});
}

std::string text(const KeyStates& states) {
    std::string result;
    for (const auto& [id, state] : states)
        result += (result.empty() ? "" : " ") + std::to_string(id.bytes[15]) + "=" +
                  std::string(name(state));
    return result.empty() ? "none" : result;
}

} // namespace wegslot
