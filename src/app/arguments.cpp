#include "app/arguments.h"

#include <algorithm>

namespace wegslot {
namespace {

Result<Uuid> idAfter(const std::vector<std::string_view>& words, std::size_t& index) {
    const std::string name(words[index]);
    if (index + 1 == words.size()) return Failure{name + " verwacht een id (zie --devices)"};
    const std::string_view text = words[++index];
    const auto id = Uuid::parse(text);
    if (!id) return Failure{name + ": geen geldig id: " + std::string(text)};
    return *id;
}

/// The command that a switch asks for; nothing for a switch that asks for none.
Result<std::optional<Command>> commandOf(const std::vector<std::string_view>& words,
                                         std::size_t& index) {
    const std::string_view word = words[index];
    if (word == "--demo") return std::optional<Command>(command::Demo{});
    if (word == "--devices") return std::optional<Command>(command::Devices{});
    if (word == "--keys") return std::optional<Command>(command::Keys{});
    if (word == "--update-now") return std::optional<Command>(command::NotYet{std::string(word)});
    if (word == "--tall" || word == "--others") return std::optional<Command>();
    if (word == "--snapshot") {
        // As the last word it has no path and asks for nothing.
        if (index + 1 == words.size()) return std::optional<Command>();
        ++index;
        return std::optional<Command>(command::NotYet{std::string(word)});
    }
    if (word == "--add-key" || word == "--remove-key") {
        const bool adds = word == "--add-key";
        const auto id = idAfter(words, index);
        if (!id) return id.failure();
        if (adds) return std::optional<Command>(command::AddKey{*id});
        return std::optional<Command>(command::RemoveKey{*id});
    }
    return Failure{(word.starts_with('-') ? "onbekende schakelaar " : "onbekend woord ") +
                   std::string(word) + " (zie --help)"};
}

bool contains(const std::vector<std::string_view>& words, std::string_view word) {
    return std::ranges::find(words, word) != words.end();
}

} // namespace

Result<Command> parseArguments(const std::vector<std::string_view>& words) {
    if (contains(words, "--help")) return Command{command::Help{}};
    if (contains(words, "--version")) return Command{command::Version{}};

    std::optional<Command> chosen;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string_view word = words[i];
        const auto asked = commandOf(words, i);
        if (!asked) return asked.failure();
        if (!*asked) continue;
        if (chosen) return Failure{std::string(word) + " gaat niet samen met een andere opdracht"};
        chosen = **asked;
    }
    if (contains(words, "--others")) {
        auto* const devices = chosen ? std::get_if<command::Devices>(&*chosen) : nullptr;
        if (devices == nullptr) return Failure{"--others hoort bij --devices"};
        devices->others = true;
    }
    return chosen.value_or(command::Run{});
}

std::string_view helpText() {
    return R"(Gebruik: wegslot [OPDRACHT]

Zonder opdracht start Wegslot: het lockt de sessie als je sleutels weg zijn.

Een sleutel kiezen (terwijl Wegslot niet draait):
  --devices [--others]  toon elke seconde de apparaten in de buurt: id, naam,
                        soort en signaal in dBm; --others ook die van andere
                        makers; stop met Ctrl-C
  --add-key ID          wacht hoogstens 30 s op het apparaat en maak het een
                        sleutel
  --keys                toon de sleutels
  --remove-key ID       verwijder een sleutel

Overig:
  --demo                speel een vertrek en terugkomst na op een ingebouwde
                        radio, in ongeveer 40 s; er wordt niets gelockt
  --help                toon deze tekst
  --version             toon de versie

Voorkeuren: $XDG_CONFIG_HOME/wegslot/preferences.json
Logboek:    ~/Library/Logs/Wegslot.log

Eindigt met 0, met 1 als iets niet lukte en met 2 bij een verkeerde aanroep.
)";
}

} // namespace wegslot
