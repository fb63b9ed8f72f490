#include "app/check_report.h"

#include "base/text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>

namespace wegslot {
namespace {

using Names = std::vector<std::string>;

std::string joined(const Names& names, const std::string& between = ", ") {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : between) + name;
    return text;
}

/// "0,4": as people here write it.
std::string tenths(Seconds duration) {
    std::string text = decimal(std::round(duration.count() * 10) / 10);
    if (text.find('.') == std::string::npos) text += ".0";
    std::ranges::replace(text, '.', ',');
    return text;
}

std::string nameOf(LockWitness witness) {
    switch (witness) {
    case LockWitness::hint:
        return "logind (LockedHint)";
    case LockWitness::saver:
        return "de schermbeveiliging (ActiveChanged)";
    case LockWitness::locker:
        return "het proces van een lockprogramma";
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

std::string stateText(CentralState state) {
    switch (state) {
    case CentralState::unknown:
        return "toestand onbekend";
    case CentralState::resetting:
        return "begint opnieuw";
    case CentralState::unsupported:
        return "kan geen Bluetooth LE";
    case CentralState::unauthorized:
        return "geen toestemming";
    case CentralState::poweredOff:
        return "staat uit";
    case CentralState::poweredOn:
        return "staat aan";
    }
    return {};
}

Finding daemonFinding(const CheckFacts::Bluetooth& facts) {
    return {.name = "bluetooth-daemon",
            .label = "Bluetooth-dienst",
            .works = facts.daemon,
            .needed = true,
            .found = facts.daemon ? Names{"org.bluez"} : Names{},
            .text = facts.daemon ? "bluetoothd draait" : "bluetoothd draait niet"};
}

Finding adapterFinding(const CheckFacts::Bluetooth& facts) {
    return {.name = "bluetooth-adapter",
            .label = "Bluetooth-adapter",
            .works = facts.state == CentralState::poweredOn,
            .needed = true,
            .found = facts.adapter ? Names{*facts.adapter} : Names{},
            .text = facts.adapter ? *facts.adapter + " " + stateText(facts.state) : "geen"};
}

Finding linksFinding(const CheckFacts::Bluetooth& facts) {
    return {.name = "connection-signal",
            .label = "Signaal van verbindingen",
            .works = facts.readsLinks,
            .needed = false,
            .found = {},
            .text =
                facts.readsLinks ? "te lezen" : "niet te lezen, sleutels worden alleen beluisterd"};
}

std::string addressText(const CheckFacts::Key& key) {
    if (!key.changesAddress) return "niet te zien, adres onbekend";
    return *key.changesAddress ? "wisselt van adres, koppel het met deze computer" : "vast adres";
}

Finding keysFinding(const CheckFacts& facts) {
    Names found;
    Names texts;
    bool anyMayStay = false;
    for (const CheckFacts::Key& key : facts.keys) {
        found.push_back(key.name);
        texts.push_back(printable(key.name) + ": " + addressText(key));
        anyMayStay = anyMayStay || !key.changesAddress.value_or(false);
    }
    if (texts.empty())
        texts.push_back("geen; kies er een in het paneel, of met --devices en --add-key");
    if (!facts.enabled) texts.push_back("Wegslot staat uit");
    return {.name = "keys",
            .label = "Sleutels",
            .works = anyMayStay && facts.enabled,
            .needed = true,
            .found = std::move(found),
            .text = joined(texts, "; ")};
}

Finding lockFinding(const CheckFacts::Locking& facts) {
    const bool heard = !facts.savers.empty() || !facts.listeners.empty();
    Names found;
    Names texts;
    if (facts.session) {
        found.emplace_back("logind");
        texts.push_back(heard ? "logind" : "logind, waar voor zover te zien niemand naar luistert");
    }
    for (const Names& who : {facts.listeners, facts.savers})
        for (const std::string& name : who) {
            found.push_back(name);
            texts.push_back(name);
        }
    if (!facts.locker.empty()) {
        const std::string command = printable(joined(facts.locker, " "));
        if (facts.lockerInstalled) found.push_back(facts.locker.front());
        texts.push_back(facts.lockerInstalled ? command
                                              : command + " (niet te vinden of niet uitvoerbaar)");
    }
    if (texts.empty()) texts.push_back("geen; installeer een lockprogramma");
    if (facts.wrongCommand) texts.push_back(*facts.wrongCommand);
    const bool byListener = facts.session && !facts.listeners.empty();
    return {.name = "lock",
            .label = "Locken",
            .works = byListener || !facts.savers.empty() || facts.lockerInstalled,
            .needed = true,
            .found = std::move(found),
            .text = joined(texts, "; ")};
}

Finding confirmationFinding(const CheckFacts::Locking& facts) {
    Names found;
    Names texts;
    const auto add = [&](bool there, LockWitness witness) {
        if (!there) return;
        found.push_back(scriptNameOf(witness));
        texts.push_back(nameOf(witness));
    };
    add(facts.session && facts.hintKept, LockWitness::hint);
    add(!facts.savers.empty(), LockWitness::saver);
    add(facts.lockerInstalled || (facts.session && !facts.listeners.empty()), LockWitness::locker);
    const bool works = !found.empty();
    if (!works) texts.emplace_back("niets");
    texts.emplace_back(facts.locked ? "nu gelockt" : "nu niet gelockt");
    return {.name = "lock-confirmation",
            .label = "Weten dat het gelockt is",
            .works = works,
            .needed = true,
            .found = std::move(found),
            .text = joined(texts, "; ")};
}

Finding idleFinding(const CheckFacts::Activity& facts) {
    const bool works = facts.idleSource && facts.idle;
    std::string text = "niet te zien; wie typt telt niet als aanwezig";
    if (facts.idleSource)
        text = *facts.idleSource + "; " +
               (facts.idle ? "laatste aanraking " + tenths(*facts.idle) + " s geleden"
                           : "antwoordt niet");
    if (facts.filmsHoldIdleUp)
        text += "; een film die speelt telt twee minuten als aanraking en verbergt daarna wie typt";
    return {.name = "idle",
            .label = "Toetsenbord en muis",
            .works = works,
            .needed = false,
            .found = facts.idleSource ? Names{*facts.idleSource} : Names{},
            .text = text};
}

Finding cameraFinding(const CheckFacts::Activity& facts) {
    const bool works = !facts.cameraSources.empty();
    return {.name = "camera",
            .label = "Camera",
            .works = works,
            .needed = false,
            .found = facts.cameraSources,
            .text = works ? joined(facts.cameraSources) +
                                (facts.cameraInUse ? "; in gebruik" : "; niet in gebruik")
                          : "niet te zien"};
}

Finding microphoneFinding(const CheckFacts::Activity& facts) {
    const bool works = facts.microphoneSource && facts.microphoneAnswers;
    std::string text = "niet te zien";
    if (facts.microphoneSource)
        text = *facts.microphoneSource + "; " +
               (!works                 ? "antwoordt niet"
                : facts.microphoneUser ? "in gebruik door " + printable(*facts.microphoneUser)
                                       : "niet in gebruik");
    return {.name = "microphone",
            .label = "Microfoon",
            .works = works,
            .needed = false,
            .found = facts.microphoneSource ? Names{*facts.microphoneSource} : Names{},
            .text = text};
}

Finding trayFinding(bool there) {
    return {.name = "tray",
            .label = "Plaats voor het icoon",
            .works = there,
            .needed = false,
            .found = {},
            .text = there ? "aanwezig" : "geen"};
}

Finding autostartFinding(bool there) {
    return {.name = "autostart",
            .label = "Start bij inloggen",
            .works = there,
            .needed = false,
            .found = {},
            .text = there ? "ja" : "nee"};
}

Finding preferencesFinding(const CheckFacts::Preferences& facts) {
    Names found;
    Names texts;
    if (facts.unreadable) texts.push_back(printable(*facts.unreadable));
    for (const PreferenceFault& fault : facts.faults) {
        found.push_back(fault.name);
        texts.push_back(fault.text);
    }
    const bool works = texts.empty();
    return {.name = "preferences",
            .label = "Voorkeuren",
            .works = works,
            .needed = false,
            .found = std::move(found),
            .text = works ? "in orde" : joined(texts, "; ")};
}

} // namespace

std::vector<Finding> findings(const CheckFacts& facts) {
    return {daemonFinding(facts.bluetooth),    adapterFinding(facts.bluetooth),
            linksFinding(facts.bluetooth),     keysFinding(facts),
            lockFinding(facts.locking),        confirmationFinding(facts.locking),
            idleFinding(facts.activity),       cameraFinding(facts.activity),
            microphoneFinding(facts.activity), preferencesFinding(facts.preferences),
            trayFinding(facts.tray),           autostartFinding(facts.autostart)};
}

bool canLock(const std::vector<Finding>& findings) {
    return std::ranges::all_of(
        findings, [](const Finding& finding) { return finding.works || !finding.needed; });
}

std::vector<std::string> reportLines(const std::vector<Finding>& findings) {
    std::vector<std::string> lines;
    for (const Finding& finding : findings) {
        const std::string mark = finding.works ? "ok" : finding.needed ? "FOUT" : "-";
        lines.push_back(padded(mark, 6) + padded(finding.label + ":", 27) + finding.text);
    }
    lines.emplace_back(canLock(findings) ? "Alles wat voor locken nodig is, werkt."
                                         : "Zo kan Wegslot niet locken.");
    return lines;
}

std::string proofLine(const LockProof& proof) {
    if (!proof.witness)
        return "Geen bevestiging van lock ontvangen binnen " + decimal(proof.after.count()) + " s";
    if (proof.after == LockProof::before)
        return "Het scherm is al gelockt, volgens " + nameOf(*proof.witness);
    return "Gelockt na " + tenths(proof.after) + " s, bevestigd door " + nameOf(*proof.witness);
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
                        {"text", finding.text}});
    if (proof)
        report["lock"] = {
            {"confirmed", proof->confirms()},
            {"by", proof->witness ? Json(scriptNameOf(*proof->witness)) : Json()},
            {"seconds", proof->after == LockProof::before ? Json() : Json(proof->after.count())}};
    return report.dump(2, ' ', false, Json::error_handler_t::replace);
}

} // namespace wegslot
