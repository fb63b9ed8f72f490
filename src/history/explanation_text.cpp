#include "history/explanation_text.h"

#include "base/text.h"
#include "control/reason.h"
#include "model/settings.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

namespace wegslot::history {
namespace {

using Kind = Decision::Kind;
using Json = nlohmann::ordered_json;

double number(const Preferences& settings, std::string_view name, double otherwise) {
    const auto found = settings.find(name);
    return found == settings.end() ? otherwise : meaning<double>(found->second).value_or(otherwise);
}

std::string inSeconds(Nanoseconds duration) {
    return decimal(std::floor(Seconds{duration}.count()));
}

TimePoint wall(const Stretch& stretch, TimePoint at) { return later(at, stretch.wallOffset); }

Message reasonOf(const Decision& decision) {
    const auto words = control::words({.code = decision.reason, .arguments = {}});
    return words.value_or(Message{decision.reason});
}

Message sentence(const KeyFact& key, const Preferences& settings, const Reader& reader) {
    const Message name = reader.nameOf(key.key);
    const Seconds lost{number(settings, "lostTimeout", 15)};
    if (!key.silentFor) return message("%1 was nog niet gehoord", {name});
    if (key.isSilent(lost))
        return message("%1 was %2 s niet gehoord; weg na %3 s geen signaal",
                       {name, inSeconds(*key.silentFor), decimal(lost.count())});
    if (!key.median)
        return message("%1 was %2 s niet gehoord, en %3 s niet dichtbij; weg na %4 s",
                       {name, inSeconds(*key.silentFor), inSeconds(key.notNearFor),
                        decimal(number(settings, "awayDelay", 5))});
    const std::string strength = decimal(key.median->value);
    const std::string threshold = decimal(key.threshold.value);
    if (key.state == KeyState::near)
        return message("%1 was dichtbij: %2 dBm, de drempel is %3 dBm",
                       {name, strength, threshold});
    return message("%1 was zwak: %2 dBm, %3 s onder de drempel van %4 dBm; weg na %5 s",
                   {name, strength, inSeconds(key.notNearFor), threshold,
                    decimal(number(settings, "awayDelay", 5))});
}

bool isOn(const Change& change) { return std::get<bool>(change.value); }

Message sentence(const Remedy& remedy, const Reader& reader) {
    const Change& change = remedy.change;
    if (change.setting == "rule")
        return meaning<LockRule>(change.value) == LockRule::allAway
                   ? message("Anders met: pas locken als alle sleutels weg zijn")
                   : message("Anders met: locken zodra een sleutel weg is");
    if (change.setting == "warningEnabled")
        return isOn(change) ? message("Anders met: een waarschuwing vooraf")
                            : message("Anders zonder waarschuwing vooraf");
    if (change.setting == "pauseDuringMeetings")
        return isOn(change) ? message("Anders met: niet locken tijdens videobellen")
                            : message("Anders zonder: niet locken tijdens videobellen");
    if (change.setting == "pauseWhileActive")
        return isOn(change) ? message("Anders met: niet locken als je je Mac gebruikt")
                            : message("Anders zonder: niet locken als je je Mac gebruikt");
    const std::string value = decimal(std::get<double>(change.value));
    const std::string before = decimal(std::get<double>(remedy.before));
    if (change.setting == "keys")
        return message("Anders met: de drempel van %1 op %2 dBm in plaats van %3",
                       {reader.nameOf(change.key), value, before});
    if (change.setting == "awayDelay")
        return message("Anders met: weg na %1 s zwak signaal in plaats van %2", {value, before});
    if (change.setting == "lostTimeout")
        return message("Anders met: weg na %1 s geen signaal in plaats van %2", {value, before});
    return message("Anders met: aftellen vanaf %1 s in plaats van %2", {value, before});
}

std::vector<Message> sentences(const Price& price, const std::vector<Stretch>& past,
                               const Reader& reader) {
    std::vector<Message> said;
    if (price.locksLess > 0)
        said.push_back(counted("%1 andere lock valt dan weg", "%1 andere locks vallen dan weg",
                               price.locksLess, {std::to_string(price.locksLess)}));
    if (price.locksMore > 0)
        said.push_back(counted("%1 lock komt er dan bij", "%1 locks komen er dan bij",
                               price.locksMore, {std::to_string(price.locksMore)}));
    if (price.latestAt) {
        const auto lived = std::ranges::find_if(past, [&price](const Stretch& stretch) {
            return !stretch.instants.empty() && stretch.instants.front().at <= *price.latestAt &&
                   *price.latestAt <= stretch.instants.back().at;
        });
        if (lived != past.end())
            said.push_back(
                message("Je vertrek van %1 wordt dan %2 s later gemerkt",
                        {reader.when(wall(*lived, *price.latestAt)), inSeconds(price.latest)}));
    }
    if (said.empty()) said.push_back(message("Aan wat verder bewaard is verandert dan niets"));
    return said;
}

std::string kindName(Kind kind) {
    switch (kind) {
    case Kind::warned:
        return "warned";
    case Kind::locked:
        return "locked";
    case Kind::heldOpen:
        return "heldOpen";
    case Kind::notArmed:
        return "notArmed";
    case Kind::lockFailed:
        break;
    }
    return "lockFailed";
}

Json value(const PreferenceValue& value) {
    if (const bool* const chosen = std::get_if<bool>(&value)) return *chosen;
    if (const double* const number = std::get_if<double>(&value)) return *number;
    if (const auto* const text = std::get_if<std::string>(&value)) return *text;
    return nullptr;
}

} // namespace

Message title(const Decision& decision, const Stretch& stretch, const Reader& reader) {
    const Message when = reader.when(wall(stretch, decision.at));
    switch (decision.kind) {
    case Kind::warned:
        return message("%1 Gewaarschuwd", {when});
    case Kind::locked:
        return message("%1 Gelockt", {when});
    case Kind::heldOpen:
        return message("%1 Niet gelockt: %2", {when, reasonOf(decision)});
    case Kind::notArmed:
        return message("%1 Wacht nog op een sleutel: %2", {when, reasonOf(decision)});
    case Kind::lockFailed:
        break;
    }
    return message("%1 De lock kwam niet: niets bevestigde hem", {when});
}

std::vector<Message> sentences(const Explanation& explanation, const std::vector<Stretch>& past,
                               const Reader& reader) {
    std::vector<Message> said;
    for (const KeyFact& key : explanation.keys)
        said.push_back(sentence(key, explanation.settings, reader));
    if (explanation.decision.kind == Kind::lockFailed) {
        said.push_back(message("Wat er mis is, zegt: wegslot --check --lock"));
        return said;
    }
    if (!explanation.remedy) {
        said.push_back(message("Geen enkele instelling had dit alleen anders gemaakt"));
        return said;
    }
    said.push_back(sentence(*explanation.remedy, reader));
    for (Message& price : sentences(explanation.remedy->price, past, reader))
        said.push_back(std::move(price));
    return said;
}

std::string json(const Explanation& explanation, const std::vector<Stretch>& past,
                 const Reader& reader) {
    const Decision& decision = explanation.decision;
    Json object{{"time", utcText(wall(past.at(decision.stretch), decision.at))},
                {"kind", kindName(decision.kind)},
                {"reason", decision.reason},
                {"keys", Json::array()}};
    const Seconds lost{number(explanation.settings, "lostTimeout", 15)};
    for (const KeyFact& key : explanation.keys) {
        Json fact{{"name", reader.nameOf(key.key).builtIn()},
                  {"state", name(key.state)},
                  {"silent", key.isSilent(lost)},
                  {"threshold", key.threshold.value},
                  {"notNearSeconds", Seconds{key.notNearFor}.count()}};
        fact["silentSeconds"] =
            key.silentFor ? Json(Seconds{*key.silentFor}.count()) : Json(nullptr);
        fact["median"] = key.median ? Json(key.median->value) : Json(nullptr);
        object["keys"].push_back(std::move(fact));
    }
    if (!explanation.remedy) return object.dump();
    const Remedy& remedy = *explanation.remedy;
    object["remedy"] = {{"setting", remedy.change.setting},
                        {"before", value(remedy.before)},
                        {"value", value(remedy.change.value)},
                        {"steps", remedy.steps},
                        {"locksLess", remedy.price.locksLess},
                        {"locksMore", remedy.price.locksMore},
                        {"latestSeconds", Seconds{remedy.price.latest}.count()}};
    if (remedy.change.setting == "keys")
        object["remedy"]["key"] = reader.nameOf(remedy.change.key).builtIn();
    return object.dump();
}

} // namespace wegslot::history
