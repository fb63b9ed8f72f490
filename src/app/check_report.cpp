#include "app/check_report.h"

#include "base/text.h"
#include "coupling/obstacle_words.h"
#include "platform/activity_detector.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace wegslot {
namespace {

using Names = std::vector<std::string>;
using Messages = std::vector<Message>;

/// `list` has two places: for what comes before and for what comes next.
Message joined(const Messages& parts, const char* list) {
    Message whole;
    for (const Message& part : parts)
        whole = whole.isEmpty() ? part : Message(list, {whole, part});
    return whole;
}

Message joined(const Names& names, const char* list = "%1, %2") {
    return joined(Messages(names.begin(), names.end()), list);
}

/// "0,4": as people here write it.
std::string tenths(Seconds duration) {
    std::string text = decimal(std::round(duration.count() * 10) / 10);
    if (text.find('.') == std::string::npos) text += ".0";
    std::ranges::replace(text, '.', ',');
    return text;
}

Message nameOf(LockWitness witness) {
    switch (witness) {
    case LockWitness::hint:
        return message("logind (LockedHint)");
    case LockWitness::saver:
        return message("de schermbeveiliging (ActiveChanged)");
    case LockWitness::locker:
        return message("het proces van een lockprogramma");
    }
    return {};
}

std::string scriptNameOf(LockWitness witness) {
    switch (witness) {
    case LockWitness::hint:
        return "LockedHint";
    case LockWitness::saver:
        return "ActiveChanged";
    case LockWitness::locker:
        return "process";
    }
    return {};
}

Message stateText(CentralState state) {
    switch (state) {
    case CentralState::unknown:
        return message("toestand onbekend");
    case CentralState::resetting:
        return message("begint opnieuw");
    case CentralState::unsupported:
        return message("kan geen Bluetooth LE");
    case CentralState::unauthorized:
        return message("geen toestemming");
    case CentralState::poweredOff:
        return message("staat uit");
    case CentralState::poweredOn:
        return message("staat aan");
    }
    return {};
}

Finding daemonFinding(const CheckFacts::Bluetooth& facts) {
    return {.name = "bluetooth-daemon",
            .label = message("Bluetooth-dienst"),
            .works = facts.daemon,
            .needed = true,
            .found = facts.daemon ? Names{"org.bluez"} : Names{},
            .text = facts.daemon    ? message("bluetoothd draait")
                    : facts.isAsked ? message("bluetoothd antwoordt niet")
                                    : message("bluetoothd draait niet")};
}

Finding adapterFinding(const CheckFacts::Bluetooth& facts) {
    return {.name = "bluetooth-adapter",
            .label = message("Bluetooth-adapter"),
            .works = facts.state == CentralState::poweredOn,
            .needed = true,
            .found = facts.adapter ? Names{*facts.adapter} : Names{},
            .text = facts.adapter ? Message("%1 %2", {*facts.adapter, stateText(facts.state)})
                                  : message("geen")};
}

Finding linksFinding(const CheckFacts::Bluetooth& facts) {
    return {.name = "connection-signal",
            .label = message("Signaal van verbindingen"),
            .works = facts.readsLinks,
            .needed = false,
            .found = {},
            .text = facts.readsLinks ? message("te lezen")
                                     : message("niet te lezen, sleutels worden alleen beluisterd")};
}

Finding couplingFinding(const CheckFacts::Bluetooth& facts) {
    return {.name = "coupling",
            .label = message("Koppelen"),
            .works = !facts.obstacle,
            .needed = false,
            .found = {},
            .text = facts.obstacle ? coupling::words({*facts.obstacle})
                                   : message("een telefoon kan hier gekoppeld worden")};
}

Message addressText(const CheckFacts::Key& key) {
    if (key.hasIdentity)
        return *key.hasIdentity ? message("identiteit geplakt")
                                : message("identiteit ontbreekt, plak ze opnieuw met --add-irk");
    if (!key.changesAddress) return message("niet te zien, adres onbekend");
    return *key.changesAddress ? message("wisselt van adres, koppel het met deze computer")
                               : message("vast adres");
}

bool staysKnown(const CheckFacts::Key& key) {
    return key.hasIdentity.value_or(!key.changesAddress.value_or(false));
}

Finding keysFinding(const CheckFacts& facts) {
    Names found;
    Messages texts;
    bool anyMayStay = false;
    for (const CheckFacts::Key& key : facts.keys) {
        found.push_back(key.name);
        texts.emplace_back("%1: %2", Messages{printable(key.name), addressText(key)});
        anyMayStay = anyMayStay || staysKnown(key);
    }
    if (texts.empty())
        texts.push_back(message("geen; kies er een in het paneel, of met --devices en --add-key"));
    if (!facts.enabled) texts.push_back(message("Wegslot staat uit"));
    return {.name = "keys",
            .label = message("Sleutels"),
            .works = anyMayStay && facts.enabled,
            .needed = true,
            .found = std::move(found),
            .text = joined(texts, "%1; %2")};
}

Finding lockFinding(const CheckFacts::Locking& facts) {
    const bool heard = !facts.savers.empty() || !facts.listeners.empty();
    Names found;
    Messages texts;
    if (facts.session) {
        found.emplace_back("logind");
        texts.push_back(heard ? Message("logind")
                              : message("logind, waar voor zover te zien niemand naar luistert"));
    }
    for (const Names& who : {facts.listeners, facts.savers})
        for (const std::string& name : who) {
            found.push_back(name);
            texts.push_back(name);
        }
    if (!facts.locker.empty()) {
        const Message command = printable(joined(facts.locker, "%1 %2").builtIn());
        if (facts.lockerInstalled) found.push_back(facts.locker.front());
        texts.push_back(facts.lockerInstalled
                            ? command
                            : message("%1 (niet te vinden of niet uitvoerbaar)", {command}));
    }
    if (texts.empty()) texts.push_back(message("geen; installeer een lockprogramma"));
    if (facts.wrongCommand) texts.push_back(*facts.wrongCommand);
    const bool byListener = facts.session && !facts.listeners.empty();
    return {.name = "lock",
            .label = message("Locken"),
            .works = byListener || !facts.savers.empty() || facts.lockerInstalled,
            .needed = true,
            .found = std::move(found),
            .text = joined(texts, "%1; %2")};
}

Finding confirmationFinding(const CheckFacts::Locking& facts) {
    Names found;
    Messages texts;
    const auto add = [&](bool there, LockWitness witness) {
        if (!there) return;
        found.push_back(scriptNameOf(witness));
        texts.push_back(nameOf(witness));
    };
    add(facts.session && facts.hintKept, LockWitness::hint);
    add(!facts.savers.empty(), LockWitness::saver);
    add(facts.lockerInstalled || (facts.session && !facts.listeners.empty()), LockWitness::locker);
    const bool works = !found.empty();
    if (!works) texts.push_back(message("niets"));
    texts.push_back(facts.locked ? message("nu gelockt") : message("nu niet gelockt"));
    return {.name = "lock-confirmation",
            .label = message("Weten dat het gelockt is"),
            .works = works,
            .needed = true,
            .found = std::move(found),
            .text = joined(texts, "%1; %2")};
}

Finding idleFinding(const CheckFacts::Activity& facts) {
    const bool works = facts.idleSource && facts.idle;
    Message text = message("niet te zien; wie typt telt niet als aanwezig");
    if (facts.idleSource)
        text = facts.idle ? message("%1; laatste aanraking %2 s geleden",
                                    {*facts.idleSource, tenths(*facts.idle)})
                          : message("%1; antwoordt niet", {*facts.idleSource});
    if (facts.filmsHoldIdleUp)
        text = message("%1; een film die speelt telt twee minuten als aanraking en verbergt daarna "
                       "wie typt",
                       {text});
    return {.name = "idle",
            .label = message("Toetsenbord en muis"),
            .works = works,
            .needed = false,
            .found = facts.idleSource ? Names{*facts.idleSource} : Names{},
            .text = text};
}

Finding cameraFinding(const CheckFacts::Activity& facts) {
    const bool works = !facts.cameraSources.empty();
    return {.name = "camera",
            .label = message("Camera"),
            .works = works,
            .needed = false,
            .found = facts.cameraSources,
            .text = !works ? message("niet te zien")
                    : facts.cameraInUse
                        ? message("%1; in gebruik", {joined(facts.cameraSources)})
                        : message("%1; niet in gebruik", {joined(facts.cameraSources)})};
}

Message userOf(const std::string& name) {
    return name == ActivityDetector::unnamedApplication ? message("een app") : printable(name);
}

Finding microphoneFinding(const CheckFacts::Activity& facts) {
    const bool works = facts.microphoneSource && facts.microphoneAnswers;
    Message text = message("niet te zien");
    if (const auto& source = facts.microphoneSource)
        text = !works ? message("%1; antwoordt niet", {*source})
               : facts.microphoneUser
                   ? message("%1; in gebruik door %2", {*source, userOf(*facts.microphoneUser)})
                   : message("%1; niet in gebruik", {*source});
    return {.name = "microphone",
            .label = message("Microfoon"),
            .works = works,
            .needed = false,
            .found = facts.microphoneSource ? Names{*facts.microphoneSource} : Names{},
            .text = text};
}

Finding trayFinding(bool there) {
    return {.name = "tray",
            .label = message("Plaats voor het icoon"),
            .works = there,
            .needed = false,
            .found = {},
            .text = there ? message("aanwezig") : message("geen")};
}

Finding autostartFinding(bool there) {
    return {.name = "autostart",
            .label = message("Start bij inloggen"),
            .works = there,
            .needed = false,
            .found = {},
            .text = there ? message("ja") : message("nee")};
}

Finding preferencesFinding(const CheckFacts::Preferences& facts) {
    Names found;
    Messages texts;
    if (facts.unreadable) texts.emplace_back(printable(*facts.unreadable));
    for (const PreferenceFault& fault : facts.faults) {
        found.push_back(fault.name);
        texts.emplace_back(fault.text);
    }
    const bool works = texts.empty();
    return {.name = "preferences",
            .label = message("Voorkeuren"),
            .works = works,
            .needed = false,
            .found = std::move(found),
            .text = works ? message("in orde") : joined(texts, "%1; %2")};
}

} // namespace

std::vector<Finding> findings(const CheckFacts& facts) {
    return {daemonFinding(facts.bluetooth),
            adapterFinding(facts.bluetooth),
            linksFinding(facts.bluetooth),
            couplingFinding(facts.bluetooth),
            keysFinding(facts),
            lockFinding(facts.locking),
            confirmationFinding(facts.locking),
            idleFinding(facts.activity),
            cameraFinding(facts.activity),
            microphoneFinding(facts.activity),
            preferencesFinding(facts.preferences),
            trayFinding(facts.tray),
            autostartFinding(facts.autostart)};
}

bool canLock(const std::vector<Finding>& findings) {
    return std::ranges::all_of(
        findings, [](const Finding& finding) { return finding.works || !finding.needed; });
}

std::vector<std::string> reportLines(const std::vector<Finding>& findings) {
    std::size_t longest = 0; // in the user's language
    for (const Finding& finding : findings)
        longest = std::max(longest, characterCount(finding.label.translated()));

    std::vector<std::string> lines;
    for (const Finding& finding : findings) {
        const std::string mark = finding.works    ? translated("ok")
                                 : finding.needed ? translated("FOUT")
                                                  : "-";
        lines.push_back(padded(mark, 6) + padded(finding.label.translated() + ":", longest + 3) +
                        finding.text.translated());
    }
    lines.push_back(canLock(findings) ? translated("Alles wat voor locken nodig is, werkt.")
                                      : translated("Zo kan Wegslot niet locken."));
    return lines;
}

std::string proofLine(const LockProof& proof) {
    if (!proof.witness)
        return translated("Geen bevestiging van lock ontvangen binnen %1 s",
                          {decimal(proof.after.count())});
    if (proof.after == LockProof::before)
        return translated("Het scherm is al gelockt, volgens %1", {nameOf(*proof.witness)});
    return translated("Gelockt na %1 s, bevestigd door %2",
                      {tenths(proof.after), nameOf(*proof.witness)});
}

std::string reportJson(const std::vector<Finding>& findings,
                       const std::optional<LockProof>& proof) {
    using Json = nlohmann::ordered_json;
    Json report{{"ok", canLock(findings) && (!proof || proof->confirms())}};
    Json& list = report["checks"] = Json::array();
    for (const Finding& finding : findings)
        list.push_back({{"name", finding.name},
                        {"ok", finding.works},
                        {"needed", finding.needed},
                        {"found", finding.found},
                        {"text", finding.text.builtIn()}});
    if (proof)
        report["lock"] = {
            {"confirmed", proof->confirms()},
            {"by", proof->witness ? Json(scriptNameOf(*proof->witness)) : Json()},
            {"seconds", proof->after == LockProof::before ? Json() : Json(proof->after.count())}};
    return report.dump(2, ' ', false, Json::error_handler_t::replace);
}

} // namespace wegslot
