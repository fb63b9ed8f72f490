#include "model/preference_faults.h"

#include "base/text.h"
#include "model/key_codec.h"
#include "model/lock_command.h"
#include "model/lock_rule.h"

#include <optional>

namespace wegslot {
namespace {

/// What a value should be, from what it is by default.
struct Kind {
    std::string name;

    Message operator()(bool) const { return message("%1 is geen true of false", {name}); }
    Message operator()(double) const { return message("%1 is geen getal", {name}); }
    Message operator()(const std::string&) const { return message("%1 is geen tekst", {name}); }
    Message operator()(const Data&) const { return message("%1 is geen lijst", {name}); }
};

bool isWrongRule(const PreferenceValue& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return text != nullptr && !lockRule(*text);
}

bool areWrongKeys(const PreferenceValue& value) {
    const auto* const data = std::get_if<Data>(&value);
    return data == nullptr || !decodeKeys(data->bytes);
}

/// Nothing when the value is what it should be.
std::optional<Message> faultOf(const MemoryStore& store, const std::string& typed,
                               const PreferenceValue& value) {
    const std::string name = printable(typed);
    if (typed == "lockCommand" && !lockCommand(store))
        return message("%1 is geen lijst van woorden", {name});
    if (typed == "lockCommand") return std::nullopt;
    if (typed == "keys" && areWrongKeys(value))
        return message("%1 is geen lijst van sleutels", {name});
    if (typed == "keys") return std::nullopt;
    const auto standard = store.defaults().find(typed);
    if (standard == store.defaults().end()) return message("%1 is onbekend", {name});
    if (standard->second.index() != value.index()) return std::visit(Kind{name}, standard->second);
    if (typed == "rule" && isWrongRule(value))
        return message("%1 is niet %2 of %3", {name, std::string(storedText(LockRule::allAway)),
                                               std::string(storedText(LockRule::anyAway))});
    return std::nullopt;
}

} // namespace

std::vector<PreferenceFault> preferenceFaults(const MemoryStore& store) {
    std::vector<PreferenceFault> faults;
    for (const auto& [name, value] : store.values())
        if (auto fault = faultOf(store, name, value)) faults.push_back({name, *std::move(fault)});
    return faults;
}

} // namespace wegslot
