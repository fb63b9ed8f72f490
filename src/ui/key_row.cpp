#include "ui/key_row.h"

#include "base/text.h"
#include "base/translation.h"
#include "scanner/device_names.h"
#include "ui/symbols.h"
#include "ui/whole_number.h"

#include <algorithm>
#include <cmath>

namespace wegslot::panel {
namespace {

std::string noteOf(const KeyFacts& facts) {
    if (facts.key.isPasted) return translated("Identiteit geplakt, alleen luisteren");
    // Only where it is known to be foreign: such a key is never connected.
    return facts.key.isApple == false ? translated("Ander merk, alleen luisteren") : "";
}

std::string troubleOf(const KeyFacts& facts) {
    if (facts.changesAddress) return translated("Wisselt van adres, koppel opnieuw");
    // Any other key was heard when it was chosen; of this one nobody knows yet whether it is ever.
    if (facts.key.isPasted && facts.isUnheard)
        return translated("Nog niet gehoord, ontgrendel het apparaat");
    return {};
}

Badge badgeOf(const std::optional<KeyState>& state) {
    switch (state.value_or(KeyState::away)) {
    case KeyState::near:
        return {translated("Dichtbij"), brand::success};
    case KeyState::leaving:
        return {translated("Zwak"), brand::orange};
    case KeyState::away:
        break;
    }
    return {translated("Weg"), brand::lila};
}

std::string signalOf(const std::optional<Dbm>& rssi) {
    return rssi ? translated("Nu %1 dBm", {wholeNumber(rssi->value)}) : translated("Geen signaal");
}

// The difference of the numbers that the row shows, or they would not add up.
std::string justSetOf(const KeyFacts& facts) {
    if (!facts.justSetBy) return {};
    const double threshold = std::trunc(facts.key.threshold.value);
    const double below = std::trunc(facts.justSetBy->value) - threshold;
    const std::vector<Message> places{wholeNumber(threshold), wholeNumber(std::abs(below))};
    return below < 0 ? translated("Drempel %1 dBm, %2 dB boven nu", places)
                     : translated("Drempel %1 dBm, %2 dB onder nu", places);
}

// What is stored is whole, and would pull the slider from under the finger that moves it.
ThresholdSlider sliderOf(const KeyFacts& facts) {
    return {std::clamp(facts.held.value_or(facts.key.threshold), ThresholdSlider::lowest,
                       ThresholdSlider::highest)};
}

} // namespace

KeyRow keyRow(const KeyFacts& facts) {
    const KeyDevice& key = facts.key;
    KeyRow row{.id = key.id,
               .symbol = DeviceNames::symbol(key.name, key.model),
               .name = printable(key.name),
               .note = noteOf(facts),
               .badge = badgeOf(facts.state),
               .remove = {.symbol = std::string(symbols::remove),
                          .text = {},
                          .tooltip = translated("Verwijder deze sleutel")},
               .trouble = troubleOf(facts),
               .signal = signalOf(facts.rssi),
               .link = facts.isHeardOverConnection ? translated("verbonden") : "",
               .limit = translated("Lockt onder %1 dBm", {wholeNumber(key.threshold.value)}),
               .bar = signalBar(facts.rssi, key.threshold),
               .farEnd = translated("Ver"),
               .threshold = sliderOf(facts),
               .nearEnd = translated("Dichtbij"),
               .setFromHere = std::nullopt,
               .justSet = justSetOf(facts)};
    if (facts.rssi)
        row.setFromHere = {
            .symbol = {},
            .text = translated("Stel in vanaf hier"),
            .tooltip = translated("Zet de drempel 15 dBm onder het huidige signaal. Doe dit "
                                  "terwijl je achter je Mac zit.")};
    return row;
}

RemovedRow removedRow(const KeyDevice& key) {
    return {.id = key.id,
            .name = printable(key.name),
            .text = translated("Verwijderd"),
            .putBack = {.symbol = {}, .text = translated("Zet terug")}};
}

} // namespace wegslot::panel
