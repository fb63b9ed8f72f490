#include "app/arguments.h"

#include "base/text.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace wegslot {
namespace {

Result<Uuid> idAfter(const std::vector<std::string_view>& words, std::size_t& index) {
    const std::string name(words[index]);
    if (index + 1 == words.size())
        return Failure{message("%1 verwacht een id (zie --devices)", {name})};
    const std::string_view text = words[++index];
    const auto id = Uuid::parse(text);
    if (!id) return Failure{message("%1: geen geldig id: %2", {name, std::string(text)})};
    return *id;
}

/// `--add-irk NAME [--same-as ID]`
Result<Command> identityAfter(const std::vector<std::string_view>& words, std::size_t& index) {
    constexpr std::size_t longest = 248; // as of a name from the air, in bytes
    const std::string_view name = index + 1 == words.size() ? "" : trimmed(words[index + 1]);
    if (name.empty() || name.starts_with('-'))
        return Failure{message("%1 verwacht een naam voor het apparaat", {"--add-irk"})};
    if (!isUtf8(name) || name.size() > longest)
        return Failure{message("%1: geen bruikbare naam", {"--add-irk"})};
    ++index;
    command::AddIdentity add{.name = std::string(name), .sameAs = std::nullopt};
    if (index + 1 < words.size() && words[index + 1] == "--same-as") {
        ++index;
        const auto id = idAfter(words, index);
        if (!id) return id.failure();
        add.sameAs = *id;
    }
    return Command{std::move(add)};
}

/// `couple [iphone|android|watch]`
Result<Command> coupleAfter(const std::vector<std::string_view>& words, std::size_t& index) {
    command::Couple couple;
    if (index + 1 == words.size()) return Command{couple};
    const std::string_view word = words[++index];
    couple.kind = coupling::kindNamed(word);
    if (!couple.kind)
        return Failure{
            message("%1: onbekend woord %2 (zie --help)", {"couple", std::string(word)})};
    return Command{couple};
}

/// The word after the one at `index`, which then is there.
Result<std::string> valueAfter(const std::vector<std::string_view>& words, std::size_t& index,
                               const Message& missing) {
    if (index + 1 == words.size() || words[index + 1].starts_with('-')) return Failure{missing};
    return std::string(words[++index]);
}

/// `why [--at TIME] [--last N]`
Result<Command> whyAfter(const std::vector<std::string_view>& words, std::size_t& index) {
    command::Why why;
    while (index + 1 < words.size() &&
           (words[index + 1] == "--at" || words[index + 1] == "--last")) {
        const bool isTime = words[++index] == "--at";
        const auto value = valueAfter(words, index,
                                      isTime ? message("%1 verwacht een tijd", {"--at"})
                                             : message("%1 verwacht een aantal", {"--last"}));
        if (!value) return value.failure();
        if (isTime) {
            why.at = *value;
            continue;
        }
        const auto [end, error] =
            std::from_chars(value->data(), value->data() + value->size(), why.last);
        if (error != std::errc{} || end != value->data() + value->size() || why.last == 0)
            return Failure{message("%1: geen aantal: %2", {"--last", *value})};
    }
    return Command{std::move(why)};
}

/// `history [--since TIME] [--csv | --clear]`
Result<Command> historyAfter(const std::vector<std::string_view>& words, std::size_t& index) {
    command::History history;
    while (index + 1 < words.size()) {
        const std::string_view word = words[index + 1];
        if (word != "--csv" && word != "--clear" && word != "--since") break;
        ++index;
        history.csv |= word == "--csv";
        history.clear |= word == "--clear";
        if (word != "--since") continue;
        auto value = valueAfter(words, index, message("%1 verwacht een tijd", {"--since"}));
        if (!value) return value.failure();
        history.since = *std::move(value);
    }
    return Command{std::move(history)};
}

/// A word that adds to a command and asks for nothing by itself.
struct Addition {
    std::string_view word;
    std::string_view command;
    bool (*apply)(Command&); ///< false for a command of another kind
};

template <typename Kind, bool Kind::*option>
bool setOption(Command& command) {
    auto* const kind = std::get_if<Kind>(&command);
    if (kind != nullptr) kind->*option = true;
    return kind != nullptr;
}

bool setJson(Command& command) {
    return setOption<command::Check, &command::Check::json>(command) ||
           setOption<command::Why, &command::Why::json>(command) ||
           setOption<command::History, &command::History::json>(command);
}

template <bool command::Recording::*option>
bool setOfRecording(Command& command) {
    auto* const run = std::get_if<command::Run>(&command);
    if (run == nullptr || !run->recording) return false;
    (*run->recording).*option = true;
    return true;
}

constexpr std::array additions{
    Addition{"--others", "--devices", setOption<command::Devices, &command::Devices::others>},
    Addition{"--lock", "--check", setOption<command::Check, &command::Check::lock>},
    Addition{"--json", "--check", setJson},
    Addition{"--anonymous", "--record", setOfRecording<&command::Recording::anonymous>},
    Addition{"--force", "--record", setOfRecording<&command::Recording::force>}};

bool contains(const std::vector<std::string_view>& words, std::string_view word) {
    return std::ranges::find(words, word) != words.end();
}

/// A start may do several things. False when the two are of different kinds, or the same thing.
bool join(Command& chosen, const Command& further) {
    auto* const run = std::get_if<command::Run>(&chosen);
    const auto* const also = std::get_if<command::Run>(&further);
    if (run == nullptr || also == nullptr) return false;
    if (run->updateNow == also->updateNow) return false;
    run->updateNow = true;
    if (also->recording) run->recording = also->recording;
    return true;
}

/// The command that a switch asks for; nothing for a switch that asks for none.
Result<std::optional<Command>> commandOf(const std::vector<std::string_view>& words,
                                         std::size_t& index) {
    const std::string_view word = words[index];
    if (word == "--demo") return std::optional<Command>(command::Demo{});
    if (word == "--devices") return std::optional<Command>(command::Devices{});
    if (word == "--keys") return std::optional<Command>(command::Keys{});
    if (word == "--check") return std::optional<Command>(command::Check{});
    if (word == "--update-now") return std::optional<Command>(command::Run{.updateNow = true});
    const auto isAddition = [word](const Addition& addition) { return addition.word == word; };
    if (word == "--tall" || std::ranges::any_of(additions, isAddition))
        return std::optional<Command>();
    if (word == "--record") {
        const bool hasPath = index + 1 < words.size() && !words[index + 1].starts_with('-');
        if (!hasPath) return Failure{message("%1 verwacht een bestand", {"--record"})};
        return std::optional<Command>(
            command::Run{.recording = command::Recording{.path = std::string(words[++index])}});
    }
    if (word == "--snapshot") {
        // As the last word it has no path and asks for nothing.
        if (index + 1 == words.size()) return std::optional<Command>();
        ++index;
        return std::optional<Command>(command::Snapshot{.path = std::string(words[index]),
                                                        .tall = contains(words, "--tall")});
    }
    if (word == "--add-key" || word == "--remove-key") {
        const bool adds = word == "--add-key";
        const auto id = idAfter(words, index);
        if (!id) return id.failure();
        if (adds) return std::optional<Command>(command::AddKey{*id});
        return std::optional<Command>(command::RemoveKey{*id});
    }
    if (word == "--add-irk") {
        auto add = identityAfter(words, index);
        if (!add) return add.failure();
        return std::optional<Command>(*std::move(add));
    }
    if (word == "couple") {
        auto couple = coupleAfter(words, index);
        if (!couple) return couple.failure();
        return std::optional<Command>(*std::move(couple));
    }
    if (word == "insight") return std::optional<Command>(command::Insight{});
    if (word == "why" || word == "history") {
        auto command = word == "why" ? whyAfter(words, index) : historyAfter(words, index);
        if (!command) return command.failure();
        return std::optional<Command>(*std::move(command));
    }
    if (word == "--same-as")
        return Failure{message("%1 hoort bij %2", {"--same-as", "--add-irk NAAM"})};
    if (control::isRequest(word))
        return Failure{message("%1 hoort als eerste woord (zie --help)", {std::string(word)})};
    if (word.starts_with('-'))
        return Failure{message("onbekende schakelaar %1 (zie --help)", {std::string(word)})};
    return Failure{message("onbekend woord %1 (zie --help)", {std::string(word)})};
}

Failure conflict(std::string_view word, std::string_view other) {
    if (word == other) return Failure{message("%1 staat er twee keer", {std::string(word)})};
    return Failure{message("%1 gaat niet samen met %2", {std::string(word), std::string(other)})};
}

/// `words` with a request's word before what may stand behind it, wherever that was typed.
std::vector<std::string_view> requestFirst(std::vector<std::string_view> words) {
    const auto isOption = [](std::string_view word) {
        return word == "--json" || word == "--follow";
    };
    const auto request = std::ranges::find_if_not(words, isOption);
    if (request != words.end() && control::isRequest(*request))
        std::rotate(words.begin(), request, request + 1);
    return words;
}

} // namespace

Result<Command> parseArguments(const std::vector<std::string_view>& typed) {
    const auto words = requestFirst(typed);
    const bool asksForHelp = contains(words, "--help") || contains(words, "-h") ||
                             (!words.empty() && words.front() == "help");
    if (asksForHelp) return Command{command::Help{}};
    if (contains(words, "--version")) return Command{command::Version{}};
    if (!words.empty() && control::isRequest(words.front())) {
        const auto request = control::parseRequest(words);
        if (!request) return request.failure();
        return Command{command::Ask{*request}};
    }

    std::optional<Command> chosen;
    std::string_view chosenBy;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string_view word = words[i];
        const auto asked = commandOf(words, i);
        if (!asked) return asked.failure();
        if (!*asked) continue;
        if (chosen && !join(*chosen, **asked)) return conflict(word, chosenBy);
        if (chosen) continue;
        chosen = **asked;
        chosenBy = word;
    }
    for (const auto& [word, command, apply] : additions) {
        if (!contains(words, word)) continue;
        if (!chosen || !apply(*chosen))
            return Failure{message("%1 hoort bij %2", {std::string(word), std::string(command)})};
    }
    return chosen.value_or(command::Run{});
}

std::string helpText() {
    return translated(R"(Gebruik: wegslot [OPDRACHT]

Zonder opdracht start Wegslot: het lockt de sessie als je sleutels weg zijn.

Een sleutel kiezen (toevoegen en verwijderen terwijl Wegslot niet draait):
  couple [iphone|android|watch]
                        koppel een telefoon of horloge stap voor stap, en maak
                        er een sleutel van; draait Wegslot al, dan in zijn
                        venster, en anders hier; stop met Ctrl-C
  --devices [--others]  toon elke seconde de apparaten in de buurt: id, naam,
                        soort en signaal in dBm; --others ook die van andere
                        makers; draait Wegslot al, dan wat dat hoort; stop met
                        Ctrl-C
  --add-key ID          wacht hoogstens 30 s op het apparaat en maak het een
                        sleutel
  --add-irk NAAM [--same-as ID]
                        maak een sleutel van een apparaat dat van adres wisselt,
                        uit de identiteit (IRK) op de standaardinvoer; mag ook
                        terwijl Wegslot draait; met --same-as is het het
                        apparaat met dat id, waarmee deze computer gekoppeld is
  --keys                toon de sleutels
  --remove-key ID       verwijder een sleutel

Nagaan wat op deze computer werkt:
  --check [--lock] [--json]
                        zeg per onderdeel wat er gevonden is; --lock lockt ook
                        echt en zegt wie dat bevestigde; --json voor scripts;
                        verandert niets en mag naast een draaiend Wegslot;
                        eindigt met 0 als alles wat voor locken nodig is werkt

Een draaiend Wegslot iets vragen:
  status [--json] [--follow]
                        toon wat Wegslot doet en hoe het de sleutels hoort;
                        --follow gaat door met elke verandering en waarom;
                        stop met Ctrl-C
  keys [--json]         toon de sleutels met id, toestand, signaal en drempel
  lock                  lock nu
  pause DUUR            pauzeer: 15m, 90s, 1,5u, 2h, of een aantal seconden;
                        van 1 s tot 4 uur
  resume                hervat

Nagaan waarom (ook als Wegslot niet draait):
  why [--at TIJD] [--last N] [--json]
                        zeg van de laatste waarschuwing, lock of pauze, of van
                        die rond die tijd, wat Wegslot van je sleutels hoorde
                        en welke ene instelling het anders had gemaakt; de tijd
                        als 12:31, 2026-11-22 of "2026-11-22 12:31"
  history [--since TIJD] [--json | --csv]
                        toon wat er sinds die tijd bewaard is, en anders van
                        de laatste dag
  history --clear       wis wat er bewaard is
  insight               open het venster dat het laat zien

Bijwerken:
  --update-now          zoek meteen naar een nieuwere versie en installeer die;
                        draait Wegslot al, dan doet dat het, en anders start
                        het ervoor

Opnemen:
  --record BESTAND [--anonymous] [--force]
                        schrijf alles wat Wegslot van buiten bereikt naar het
                        bestand, voor wegslot-replay; draait Wegslot al, dan
                        dat, tot Ctrl-C, en anders start het ervoor;
                        --anonymous vervangt de namen en ids; --force de inhoud
                        van een bestand dat er al is

Overig:
  --snapshot BESTAND [--tall]
                        schrijf na 15 s het paneel als PNG, geheel uitgeklapt,
                        en stop; --tall maakt het 1600 hoog; mag naast een
                        draaiend Wegslot en verandert niets
  --demo                speel een vertrek en terugkomst na op een ingebouwde
                        radio, in ongeveer 40 s, met icoon, paneel en
                        aftelling; er wordt niets gelockt
  --help                toon deze tekst; ook -h
  --version             toon de versie

Voorkeuren: $XDG_CONFIG_HOME/wegslot/preferences.json
Logboek:    ~/Library/Logs/Wegslot.log

Eindigt met 0, met 1 als iets niet lukte, met 2 bij een verkeerde aanroep en met
3 als Wegslot niet draait en er iets van gevraagd wordt.
)");
}

} // namespace wegslot
