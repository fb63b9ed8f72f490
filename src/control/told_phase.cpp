#include "control/told_phase.h"

#include "base/time.h"

#include <utility>

namespace wegslot::control {
namespace {

template <std::size_t... index>
std::optional<Phase> phaseNamed(std::string_view wanted, std::index_sequence<index...>) {
    std::optional<Phase> found;
    const auto consider = [&](Phase phase) {
        if (name(phase) == wanted) found = std::move(phase);
    };
    (consider(std::variant_alternative_t<index, Phase>{}), ...);
    return found;
}

/// Gives a phase what it carries; says whether that was told.
struct Complete {
    const Reason& reason;
    std::optional<std::int64_t> pausedUntil;

    bool operator()(phase::BluetoothUnavailable& phase) const { return explain(phase.text); }
    bool operator()(phase::Paused& phase) const { return explain(phase.text); }
    bool operator()(phase::Snoozed& phase) const {
        if (!pausedUntil) return false;
        // Held within what an instant can be: it may be any number.
        const Seconds sinceEpoch{static_cast<double>(*pausedUntil)};
        phase.until = later(TimePoint{}, rounded(sinceEpoch));
        return true;
    }
    bool operator()(auto&) const { return true; }

    [[nodiscard]] bool explain(Message& text) const {
        const auto told = words(reason);
        if (told) text = *told;
        return told.has_value();
    }
};

} // namespace

std::optional<Phase> phaseNamed(std::string_view name) {
    return phaseNamed(name, std::make_index_sequence<std::variant_size_v<Phase>>{});
}

std::optional<Message> toldPhase(const std::string& name, const Reason& reason,
                                 std::optional<std::int64_t> pausedUntil,
                                 const ClockTime& wallTime) {
    if (reason.code.empty()) return std::nullopt;
    auto phase = phaseNamed(name);
    if (!phase || !std::visit(Complete{reason, pausedUntil}, *phase)) return std::nullopt;
    return text(*phase, wallTime);
}

} // namespace wegslot::control
