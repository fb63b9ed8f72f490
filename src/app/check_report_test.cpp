#include "app/check_report.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <algorithm>

using namespace wegslot;

namespace {

CheckFacts good() {
    CheckFacts facts;
    facts.bluetooth = {.daemon = true,
                       .adapter = "hci0",
                       .state = CentralState::poweredOn,
                       .readsLinks = true,
                       .obstacle = std::nullopt};
    facts.keys = {{.name = "Telefoon", .changesAddress = false}};
    facts.locking.session = true;
    facts.locking.savers = {"org.gnome.Shell.ScreenShield"};
    facts.locking.hintKept = true;
    facts.activity = {.idleSource = "Mutter",
                      .idle = Seconds{3.21},
                      .cameraSources = {"PipeWire", "/proc"},
                      .cameraInUse = false,
                      .microphoneSource = "PulseAudio",
                      .microphoneAnswers = true,
                      .microphoneUser = "Foo"};
    facts.tray = true;
    facts.autostart = true;
    return facts;
}

Finding finding(const CheckFacts& facts, std::string_view name) {
    const auto all = findings(facts);
    const auto found = std::ranges::find(all, name, &Finding::name);
    if (found == all.end()) throw std::runtime_error("no such finding");
    return *found;
}

CheckFacts with(const std::function<void(CheckFacts&)>& change) {
    CheckFacts facts = good();
    change(facts);
    return facts;
}

using Names = std::vector<std::string>;

} // namespace

TEST(CheckReport, WhereEverythingWorksEachLineSaysSo) {
    const auto lines = reportLines(findings(good()));
    EXPECT_EQ(lines,
              (std::vector<std::string>{
                  "ok    Bluetooth-dienst:          bluetoothd draait",
                  "ok    Bluetooth-adapter:         hci0 staat aan",
                  "ok    Signaal van verbindingen:  te lezen",
                  "ok    Koppelen:                  een telefoon kan hier gekoppeld worden",
                  "ok    Sleutels:                  Telefoon: vast adres",
                  "ok    Locken:                    logind; org.gnome.Shell.ScreenShield",
                  "ok    Weten dat het gelockt is:  logind (LockedHint); de schermbeveiliging "
                  "(ActiveChanged); nu niet gelockt",
                  "ok    Toetsenbord en muis:       Mutter; laatste aanraking 3,2 s geleden",
                  "ok    Camera:                    PipeWire, /proc; niet in gebruik",
                  "ok    Microfoon:                 PulseAudio; in gebruik door Foo",
                  "ok    Voorkeuren:                in orde",
                  "ok    Plaats voor het icoon:     aanwezig",
                  "ok    Start bij inloggen:        ja",
                  "Alles wat voor locken nodig is, werkt.",
              }));
}

TEST(CheckReport, WhereThereIsNothingEachLineSaysSo) {
    const auto lines = reportLines(findings({}));
    EXPECT_EQ(
        lines,
        (std::vector<std::string>{
            "FOUT  Bluetooth-dienst:          bluetoothd draait niet",
            "FOUT  Bluetooth-adapter:         geen",
            "-     Signaal van verbindingen:  niet te lezen, sleutels worden alleen beluisterd",
            "-     Koppelen:                  Er is geen Bluetooth te vinden. Steek een adapter in "
            "of start de Bluetooth-dienst, en probeer het opnieuw.",
            "FOUT  Sleutels:                  geen; kies er een in het paneel, of met --devices en "
            "--add-key",
            "FOUT  Locken:                    geen; installeer een lockprogramma",
            "FOUT  Weten dat het gelockt is:  niets; nu niet gelockt",
            "-     Toetsenbord en muis:       niet te zien; wie typt telt niet als aanwezig",
            "-     Camera:                    niet te zien",
            "-     Microfoon:                 niet te zien",
            "ok    Voorkeuren:                in orde",
            "-     Plaats voor het icoon:     geen",
            "-     Start bij inloggen:        nee",
            "Zo kan Wegslot niet locken.",
        }));
}

TEST(CheckReport, TheLongestLabelHasTwoBlanksBehindItInEveryLanguage) {
    const auto found = [](std::string label) {
        return Finding{.name = "a",
                       .label = Message(std::move(label)),
                       .works = true,
                       .needed = false,
                       .found = {},
                       .text = Message("ja")};
    };
    const auto lines = reportLines({found("Sleutels"), found("Wéten van het vergrendelen")});
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0], "ok    Sleutels:                    ja");
    EXPECT_EQ(lines[1], "ok    Wéten van het vergrendelen:  ja");
}

TEST(CheckReport, OnlyWhatLockingTakesDecides) {
    EXPECT_TRUE(canLock(findings(good())));
    EXPECT_TRUE(canLock(findings(with([](CheckFacts& facts) {
        facts.bluetooth.readsLinks = false;
        facts.bluetooth.obstacle = coupling::Obstacle::noRoom;
        facts.activity = {};
        facts.tray = false;
        facts.autostart = false;
    }))));
    const std::vector<std::function<void(CheckFacts&)>> breakages{
        [](CheckFacts& facts) { facts.bluetooth.daemon = false; },
        [](CheckFacts& facts) { facts.bluetooth.state = CentralState::poweredOff; },
        [](CheckFacts& facts) { facts.keys.clear(); },
        [](CheckFacts& facts) { facts.keys[0].changesAddress = true; },
        [](CheckFacts& facts) { facts.enabled = false; },
        [](CheckFacts& facts) { facts.locking.savers.clear(); },
    };
    for (const auto& change : breakages)
        EXPECT_FALSE(canLock(findings(with(change)))) << &change - breakages.data();
}

TEST(CheckReport, PreferencesThatWereMistypedAreNamedAndDoNotDecide) {
    const auto facts = with([](CheckFacts& changed) {
        changed.preferences.faults = {{"awayDelay", "awayDelay is geen getal"},
                                      {"x\n", "x\uFFFD is onbekend"}};
    });
    const Finding typed = finding(facts, "preferences");
    EXPECT_FALSE(typed.works);
    EXPECT_EQ(typed.found, (Names{"awayDelay", "x\n"})); // for scripts, as it was typed
    EXPECT_EQ(typed.text, "awayDelay is geen getal; x\uFFFD is onbekend");
    EXPECT_TRUE(canLock(findings(facts)));
    const auto broken = finding(
        with([](CheckFacts& changed) { changed.preferences.unreadable = "regel 1, kolom 2"; }),
        "preferences");
    EXPECT_FALSE(broken.works);
    EXPECT_EQ(broken.text, "regel 1, kolom 2");
}

TEST(CheckReport, OneKeyThatStaysIsEnough) {
    const auto keys = finding(with([](CheckFacts& facts) {
                                  facts.keys.push_back({"Horloge", true});
                              }),
                              "keys");
    EXPECT_TRUE(keys.works);
    EXPECT_EQ(keys.text, "Telefoon: vast adres; Horloge: wisselt van adres, koppel het met deze "
                         "computer");
    EXPECT_EQ(keys.found, (Names{"Telefoon", "Horloge"}));
}

TEST(CheckReport, AKeyThatNoRadioKnowsIsNotSaidToStayAndIsNoFault) {
    const auto keys = finding(
        with([](CheckFacts& facts) { facts.keys = {{.name = "Telefoon", .changesAddress = {}}}; }),
        "keys");
    EXPECT_TRUE(keys.works);
    EXPECT_EQ(keys.text, "Telefoon: niet te zien, adres onbekend");
}

TEST(CheckReport, APastedKeyIsKnownByItsIdentityWhateverItsAddress) {
    const auto keysWith = [](bool kept, std::optional<bool> changes) {
        return finding(
            with([&](CheckFacts& facts) {
                facts.keys = {{.name = "Telefoon", .changesAddress = changes, .hasIdentity = kept}};
            }),
            "keys");
    };
    EXPECT_TRUE(keysWith(true, std::nullopt).works);
    EXPECT_EQ(keysWith(true, std::nullopt).text, "Telefoon: identiteit geplakt");
    EXPECT_FALSE(keysWith(false, std::nullopt).works);
    EXPECT_EQ(keysWith(false, std::nullopt).text,
              "Telefoon: identiteit ontbreekt, plak ze opnieuw met --add-irk");
}

TEST(CheckReport, LogindAloneIsNoWayToLock) {
    const auto lock =
        finding(with([](CheckFacts& facts) { facts.locking = {.session = true}; }), "lock");
    EXPECT_FALSE(lock.works);
    EXPECT_EQ(lock.text, "logind, waar voor zover te zien niemand naar luistert");
}

TEST(CheckReport, AListenerOrALockerIsAWayAndItsProcessTheProof) {
    const auto listened = with(
        [](CheckFacts& facts) { facts.locking = {.session = true, .listeners = {"swayidle"}}; });
    EXPECT_TRUE(finding(listened, "lock").works);
    EXPECT_EQ(finding(listened, "lock").text, "logind; swayidle");
    EXPECT_EQ(finding(listened, "lock-confirmation").found, Names{"process"});
    const auto deaf = with(
        [](CheckFacts& facts) { facts.locking = {.session = false, .listeners = {"swayidle"}}; });
    EXPECT_FALSE(finding(deaf, "lock").works); // there is nobody for it to listen to
    const auto locker = with([](CheckFacts& facts) {
        facts.locking = {.locker = {"i3lock", "--nofork"}, .lockerInstalled = true};
    });
    EXPECT_TRUE(finding(locker, "lock").works);
    EXPECT_EQ(finding(locker, "lock").text, "i3lock --nofork");
    EXPECT_EQ(finding(locker, "lock").found, Names{"i3lock"});
    EXPECT_TRUE(finding(locker, "lock-confirmation").works);
}

TEST(CheckReport, AWrongCommandIsNamed) {
    const auto missing = with([](CheckFacts& facts) {
        facts.locking = {.locker = {"mylokc", "-x"}, .lockerInstalled = false};
    });
    EXPECT_FALSE(finding(missing, "lock").works);
    EXPECT_EQ(finding(missing, "lock").text, "mylokc -x (niet te vinden of niet uitvoerbaar)");
    EXPECT_FALSE(finding(missing, "lock-confirmation").works);
    const auto wrong = with([](CheckFacts& facts) { facts.locking.wrongCommand = "zo niet"; });
    EXPECT_EQ(finding(wrong, "lock").text, "logind; org.gnome.Shell.ScreenShield; zo niet");
}

TEST(CheckReport, AnIdleSourceThatDoesNotAnswerIsNoneThatWorks) {
    const auto idle = finding(with([](CheckFacts& facts) { facts.activity.idle.reset(); }), "idle");
    EXPECT_FALSE(idle.works);
    EXPECT_EQ(idle.text, "Mutter; antwoordt niet");
}

TEST(CheckReport, WhereAFilmCountsAsHandsItSaysForHowLong) {
    const auto idle =
        finding(with([](CheckFacts& facts) { facts.activity.filmsHoldIdleUp = true; }), "idle");
    EXPECT_EQ(idle.text, "Mutter; laatste aanraking 3,2 s geleden; een film die speelt telt twee "
                         "minuten als aanraking en verbergt daarna wie typt");
}

TEST(CheckReport, AMicrophoneSourceThatDoesNotAnswerIsNotSaidToBeOutOfUse) {
    const auto microphone = finding(
        with([](CheckFacts& facts) { facts.activity.microphoneAnswers = false; }), "microphone");
    EXPECT_FALSE(microphone.works);
    EXPECT_EQ(microphone.text, "PulseAudio; antwoordt niet");
}

TEST(CheckReport, AProofSaysWhoConfirmedWhen) {
    EXPECT_EQ(proofLine({LockWitness::hint, Seconds{0.43}}),
              "Gelockt na 0,4 s, bevestigd door logind (LockedHint)");
    EXPECT_EQ(proofLine({LockWitness::locker, Seconds{2}}),
              "Gelockt na 2,0 s, bevestigd door het proces van een lockprogramma");
    EXPECT_EQ(proofLine({std::nullopt, Seconds{5}}),
              "Geen bevestiging van lock ontvangen binnen 5 s");
    EXPECT_EQ(proofLine({LockWitness::saver, LockProof::before}),
              "Het scherm is al gelockt, volgens de schermbeveiliging (ActiveChanged)");
}

TEST(CheckReport, ScriptsGetTheSameInJson) {
    using Json = nlohmann::json;
    const Json report = Json::parse(reportJson(findings(good()), std::nullopt));
    EXPECT_EQ(report.at("ok"), true);
    EXPECT_FALSE(report.contains("lock"));
    EXPECT_EQ(report.at("checks").size(), 13U);
    EXPECT_EQ(report.at("checks")[5], Json::parse(R"({"name": "lock", "ok": true, "needed": true,
                              "found": ["logind", "org.gnome.Shell.ScreenShield"],
                              "text": "logind; org.gnome.Shell.ScreenShield"})"));
    const Json proven =
        Json::parse(reportJson(findings(good()), LockProof{LockWitness::saver, Seconds{1.5}}));
    EXPECT_EQ(proven.at("ok"), true);
    EXPECT_EQ(proven.at("lock"),
              Json::parse(R"({"confirmed": true, "by": "ActiveChanged", "seconds": 1.5})"));
    const Json before =
        Json::parse(reportJson(findings(good()), LockProof{LockWitness::saver, LockProof::before}));
    EXPECT_EQ(before.at("ok"), false);
    EXPECT_EQ(before.at("lock"),
              Json::parse(R"({"confirmed": false, "by": "ActiveChanged", "seconds": null})"));
    const Json failed =
        Json::parse(reportJson(findings(good()), LockProof{std::nullopt, Seconds{5}}));
    EXPECT_EQ(failed.at("ok"), false);
    EXPECT_EQ(failed.at("lock"),
              Json::parse(R"({"confirmed": false, "by": null, "seconds": 5.0})"));
}

TEST(CheckReport, NamesThatAreNoTextSpoilNothing) {
    const auto facts = with([](CheckFacts& changed) {
        changed.keys[0].name = "a\nb\xff";
        changed.activity.microphoneUser = "x\x1b[2J";
    });
    EXPECT_EQ(finding(facts, "keys").text.builtIn().find('\n'), std::string::npos);
    EXPECT_EQ(finding(facts, "microphone").text.builtIn().find('\x1b'), std::string::npos);
    EXPECT_TRUE(nlohmann::json::accept(reportJson(findings(facts), std::nullopt)));
}
