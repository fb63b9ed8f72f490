#include "insight/settings_words.h"

#include "base/text.h"
#include "model/setting.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <string_view>

namespace wegslot::insight {
namespace {

Message switched(const Message& what, const PreferenceValue& value) {
    return meaning<bool>(value).value_or(false) ? message("%1: aan", {what})
                                                : message("%1: uit", {what});
}

Message secondsOf(const PreferenceValue& value) {
    return decimal(meaning<Seconds>(value).value_or(Seconds{0}).count());
}

struct Known {
    std::string_view name;
    Message (*words)(const PreferenceValue& value);
};

// Whether it is switched on at all is a phase, and told as one.
constexpr std::array known{
    Known{"rule",
          [](const PreferenceValue& value) {
              return meaning<LockRule>(value) == LockRule::anyAway
                         ? message("Locken als één sleutel weg is")
                         : message("Locken als alle sleutels weg zijn");
          }},
    Known{"awayDelay",
          [](const PreferenceValue& value) {
              return message("Weg na %1 s zwak signaal", {secondsOf(value)});
          }},
    Known{"lostTimeout",
          [](const PreferenceValue& value) {
              return message("Weg na %1 s geen signaal", {secondsOf(value)});
          }},
    Known{"warningEnabled",
          [](const PreferenceValue& value) {
              return switched(message("Waarschuw voordat je Mac lockt"), value);
          }},
    Known{"warningSeconds",
          [](const PreferenceValue& value) {
              return message("Aftellen vanaf %1 s", {secondsOf(value)});
          }},
    Known{"pauseDuringMeetings",
          [](const PreferenceValue& value) {
              return switched(message("Niet locken tijdens videobellen"), value);
          }},
    Known{"pauseWhileActive", [](const PreferenceValue& value) {
              return switched(message("Niet locken als je je Mac gebruikt"), value);
          }}};

using Keys = std::vector<KeyDevice>;

const KeyDevice* find(const Keys& keys, const Uuid& id) {
    const auto found = std::ranges::find(keys, id, &KeyDevice::id);
    return found == keys.end() ? nullptr : &*found;
}

std::vector<Message> changesOfKeys(const Keys& before, const Keys& after, const NameOf& nameOf) {
    std::vector<Message> changes;
    for (const KeyDevice& key : after) {
        const KeyDevice* const earlier = find(before, key.id);
        if (earlier == nullptr)
            changes.push_back(message("Nieuwe sleutel: %1", {nameOf(key.id)}));
        else if (earlier->threshold != key.threshold)
            changes.push_back(message(
                "Drempel van %1: %2 dBm, was %3",
                {nameOf(key.id), decimal(key.threshold.value), decimal(earlier->threshold.value)}));
    }
    for (const KeyDevice& key : before)
        if (find(after, key.id) == nullptr)
            changes.push_back(message("Geen sleutel meer: %1", {nameOf(key.id)}));
    return changes;
}

} // namespace

std::vector<Message> changesOf(const Preferences& before, const Preferences& after,
                               const NameOf& nameOf) {
    std::vector<Message> changes;
    for (const auto& [name, value] : after) {
        const auto earlier = before.find(name);
        if (earlier == before.end() || earlier->second == value) continue;
        if (name == "keys") {
            const auto was = meaning<Keys>(earlier->second);
            const auto is = meaning<Keys>(value);
            if (was && is)
                std::ranges::copy(changesOfKeys(*was, *is, nameOf), std::back_inserter(changes));
            continue;
        }
        const auto* const entry = std::ranges::find(known, name, &Known::name);
        if (entry != known.end()) changes.push_back(entry->words(value));
    }
    return changes;
}

} // namespace wegslot::insight
