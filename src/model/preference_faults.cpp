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
    std::string operator()(bool) const { return "geen true of false"; }
    std::string operator()(double) const { return "geen getal"; }
    std::string operator()(const std::string&) const { return "geen tekst"; }
    std::string operator()(const Data&) const { return "geen lijst"; }
};

bool isWrongRule(const PreferenceValue& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return text != nullptr && !lockRule(*text);
}

bool areWrongKeys(const PreferenceValue& value) {
    const auto* const data = std::get_if<Data>(&value);
    return data == nullptr || !decodeKeys(data->bytes);
}

/// What `value` is not; nothing when it is what it should be.
std::optional<std::string> wrongIn(const MemoryStore& store, const std::string& name,
                                   const PreferenceValue& value) {
    if (name == "lockCommand")
        return lockCommand(store) ? std::nullopt : std::optional("geen lijst van woorden");
    if (name == "keys")
        return areWrongKeys(value) ? std::optional("geen lijst van sleutels") : std::nullopt;
    const auto standard = store.defaults().find(name);
    if (standard == store.defaults().end()) return "onbekend";
    if (standard->second.index() != value.index()) return std::visit(Kind{}, standard->second);
    if (name == "rule" && isWrongRule(value))
        return "niet " + std::string(storedText(LockRule::allAway)) + " of " +
               std::string(storedText(LockRule::anyAway));
    return std::nullopt;
}

} // namespace

std::vector<PreferenceFault> preferenceFaults(const MemoryStore& store) {
    std::vector<PreferenceFault> faults;
    for (const auto& [name, value] : store.values())
        if (const auto wrong = wrongIn(store, name, value))
            faults.push_back({name, printable(name) + " is " + *wrong});
    return faults;
}

} // namespace wegslot
