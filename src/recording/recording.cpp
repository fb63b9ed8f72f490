#include "recording/recording.h"

#include "trace/writer.h"

#include <algorithm>
#include <utility>

namespace wegslot {

Recording::Recording(Sink sink, std::optional<Disguise> disguise, ActivityDetector& detector,
                     const Clock& clock, TimePoint start)
    : activity(detector, clock),
      sink_(std::move(sink)),
      disguise_(std::move(disguise)),
      start_(start) {}

std::optional<Failure> Recording::tell(trace::Event event, TimePoint at) {
    // Rounded down: what came before a beat of the core must not come after it.
    const auto elapsed = std::chrono::floor<std::chrono::milliseconds>(at - start_);
    last_ = std::max<Nanoseconds>(last_, elapsed);
    remember(event);
    if (disguise_) event = disguise_->disguised(std::move(event));
    return sink_(written({.time = last_, .event = std::move(event)}));
}

std::optional<std::string> Recording::newName(const Uuid& id,
                                              const std::optional<std::string_view>& name) const {
    const auto known = told_.peripheralName(id);
    if (name) return known == *name ? std::nullopt : std::optional(std::string(*name));
    // A trace cannot take a name back, but an empty one counts as none.
    return known.value_or("").empty() ? std::nullopt : std::optional(std::string());
}

void Recording::remember(const trace::Event& event) {
    if (const auto* const known = std::get_if<trace::Known>(&event))
        told_.know(known->id, known->name);
    if (const auto* const heard = std::get_if<trace::Heard>(&event))
        told_.advertise({.id = heard->id, .rssi = heard->rssi, .peripheralName = heard->name});
    if (const auto* const value = std::get_if<trace::Value>(&event))
        told_.value(value->id, value->characteristic, {}, value->name);
    if (const auto* const identity = std::get_if<trace::Identity>(&event))
        told_.identify(identity->from, identity->to);
}

} // namespace wegslot
