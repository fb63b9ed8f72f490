#include "app/arguments.h"

#include <gtest/gtest.h>

using namespace wegslot;

namespace {

using Words = std::vector<std::string_view>;

template <typename T>
bool asksFor(const Words& words) {
    const auto parsed = parseArguments(words);
    return parsed && std::holds_alternative<T>(*parsed);
}

std::string fault(const Words& words) {
    const auto parsed = parseArguments(words);
    return parsed ? "" : parsed.failure().message.builtIn();
}

constexpr auto id = "0f2c41a7-0b3d-4c5e-8f60-718293a4b5c6";

} // namespace

TEST(Arguments, WithoutWordsTheApplicationRuns) { EXPECT_TRUE(asksFor<command::Run>({})); }

TEST(Arguments, EachCommandHasItsSwitch) {
    EXPECT_TRUE(asksFor<command::Demo>({"--demo"}));
    EXPECT_TRUE(asksFor<command::Help>({"--help"}));
    EXPECT_TRUE(asksFor<command::Version>({"--version"}));
    EXPECT_TRUE(asksFor<command::Keys>({"--keys"}));
    EXPECT_FALSE(std::get<command::Devices>(*parseArguments({"--devices"})).others);
    EXPECT_TRUE(std::get<command::Devices>(*parseArguments({"--others", "--devices"})).others);
    EXPECT_EQ(std::get<command::AddKey>(*parseArguments({"--add-key", id})).id, *Uuid::parse(id));
    EXPECT_EQ(std::get<command::RemoveKey>(*parseArguments({"--remove-key", id})).id,
              *Uuid::parse(id));
}

TEST(Arguments, ACheckMayLockAndMaySpeakToScripts) {
    const auto check = [](const Words& words) {
        return std::get<command::Check>(*parseArguments(words));
    };
    EXPECT_FALSE(check({"--check"}).lock);
    EXPECT_FALSE(check({"--check"}).json);
    EXPECT_TRUE(check({"--check", "--lock"}).lock);
    EXPECT_FALSE(check({"--check", "--lock"}).json);
    EXPECT_TRUE(check({"--json", "--check"}).json);
    EXPECT_FALSE(check({"--json", "--check"}).lock);
}

TEST(Arguments, ARequestToTheOneThatRunsIsAWordAndComesFirst) {
    const auto asked = std::get<command::Ask>(*parseArguments({"pause", "15m"})).request;
    EXPECT_EQ(std::get<control::request::Pause>(asked).seconds, 900U);
    EXPECT_TRUE(asksFor<command::Ask>({"status", "--json", "--follow"}));
    EXPECT_EQ(fault({"pause", "nu"}),
              "pause: geen geldige duur: nu (bijvoorbeeld 15m, 90s, 1,5u of 2h)");
    EXPECT_EQ(fault({"--others", "status"}), "status hoort als eerste woord (zie --help)");
    EXPECT_TRUE(std::get<control::request::Status>(
                    std::get<command::Ask>(*parseArguments({"--json", "status"})).request)
                    .json);
    EXPECT_EQ(fault({"--json", "lock"}), "lock: onbekend woord --json (zie --help)");
    EXPECT_EQ(std::get<command::Run>(*parseArguments({"--record", "status"})).recording->path,
              "status");
    EXPECT_TRUE(asksFor<command::Help>({"status", "--help"}));
}

TEST(Arguments, HelpAndVersionAnswerWhateverElseIsSaid) {
    EXPECT_TRUE(asksFor<command::Help>({"--devices", "--onzin", "--help"}));
    EXPECT_TRUE(asksFor<command::Help>({"-h"}));
    EXPECT_TRUE(asksFor<command::Help>({"status", "-h"}));
    EXPECT_TRUE(asksFor<command::Help>({"help"}));
    EXPECT_EQ(std::get<command::Run>(*parseArguments({"--record", "help"})).recording->path,
              "help");
    EXPECT_TRUE(asksFor<command::Version>({"--demo", "--version"}));
}

TEST(Arguments, ALastSnapshotWithoutAPathStartsNormally) {
    EXPECT_TRUE(asksFor<command::Run>({"--snapshot"}));
    EXPECT_TRUE(asksFor<command::Run>({"--tall", "--snapshot"}));
    EXPECT_TRUE(asksFor<command::Run>({"--tall"}));
}

TEST(Arguments, ASnapshotHasThePathBehindItAndMayBeTall) {
    const auto snapshot = [](const Words& words) {
        return std::get<command::Snapshot>(*parseArguments(words));
    };
    EXPECT_EQ(snapshot({"--snapshot", "x.png"}).path, "x.png");
    EXPECT_FALSE(snapshot({"--snapshot", "x.png"}).tall);
    EXPECT_TRUE(snapshot({"--tall", "--snapshot", "x.png"}).tall);
    EXPECT_EQ(snapshot({"--snapshot", "x.png", "--tall"}).path, "x.png");
    EXPECT_TRUE(snapshot({"--snapshot", "x.png", "--tall"}).tall);
    EXPECT_EQ(fault({"--snapshot", "x.png", "--keys"}), "--keys gaat niet samen met --snapshot");
}

TEST(Arguments, AnUpdateNowRunsTheApplication) {
    EXPECT_TRUE(std::get<command::Run>(*parseArguments({"--update-now"})).updateNow);
    EXPECT_FALSE(std::get<command::Run>(*parseArguments({})).updateNow);
}

TEST(Arguments, ARecordingRunsTheApplicationAndMayBeAnonymous) {
    const auto run = [](const Words& words) {
        return std::get<command::Run>(*parseArguments(words));
    };
    EXPECT_FALSE(run({}).recording);
    EXPECT_EQ(run({"--record", "x.jsonl"}).recording->path, "x.jsonl");
    EXPECT_FALSE(run({"--record", "x.jsonl"}).recording->anonymous);
    EXPECT_TRUE(run({"--record", "x.jsonl", "--anonymous"}).recording->anonymous);
    EXPECT_TRUE(run({"--anonymous", "--record", "x.jsonl"}).recording->anonymous);
    EXPECT_FALSE(run({"--record", "x.jsonl"}).updateNow);
    EXPECT_FALSE(run({"--record", "x.jsonl"}).recording->force);
    EXPECT_TRUE(run({"--record", "x.jsonl", "--force"}).recording->force);
    EXPECT_EQ(fault({"--force"}), "--force hoort bij --record");
}

TEST(Arguments, ARecordingMayStartWithAnUpdate) {
    for (const Words& words : {Words{"--record", "x", "--update-now", "--anonymous"},
                               Words{"--update-now", "--anonymous", "--record", "x"}}) {
        const auto parsed = parseArguments(words);
        ASSERT_TRUE(parsed);
        const auto& run = std::get<command::Run>(*parsed);
        EXPECT_TRUE(run.updateNow);
        EXPECT_EQ(run.recording->path, "x");
        EXPECT_TRUE(run.recording->anonymous);
    }
}

TEST(Arguments, ARecordingNeedsAFileAndGoesWithNoOtherCommand) {
    EXPECT_EQ(fault({"--record"}), "--record verwacht een bestand");
    EXPECT_EQ(fault({"--record", "--anonymous"}), "--record verwacht een bestand");
    EXPECT_EQ(fault({"--anonymous"}), "--anonymous hoort bij --record");
    EXPECT_EQ(fault({"--anonymous", "--update-now"}), "--anonymous hoort bij --record");
    EXPECT_EQ(fault({"--anonymous", "--keys"}), "--anonymous hoort bij --record");
    EXPECT_EQ(fault({"--record", "x", "--record", "y"}), "--record staat er twee keer");
    EXPECT_EQ(fault({"--record", "x", "--keys"}), "--keys gaat niet samen met --record");
    EXPECT_EQ(fault({"--update-now", "--update-now"}), "--update-now staat er twee keer");
}

TEST(Arguments, CouplingMayBeToldWhatItIs) {
    const auto kind = [](const Words& words) {
        return std::get<command::Couple>(*parseArguments(words)).kind;
    };
    EXPECT_EQ(kind({"couple"}), std::nullopt);
    EXPECT_EQ(kind({"couple", "iphone"}), coupling::Kind::iphone);
    EXPECT_EQ(kind({"couple", "android"}), coupling::Kind::android);
    EXPECT_EQ(kind({"couple", "watch"}), coupling::Kind::watch);
    EXPECT_EQ(fault({"couple", "fridge"}), "couple: onbekend woord fridge (zie --help)");
    EXPECT_EQ(fault({"couple", "watch", "--demo"}), "--demo gaat niet samen met couple");
}

TEST(Arguments, AnIdentityIsAddedUnderANameAndMayBeThatOfABond) {
    const auto add = [](const Words& words) {
        return std::get<command::AddIdentity>(*parseArguments(words));
    };
    const std::string bond = "00000000-0000-0000-0000-000000000001";
    EXPECT_EQ(add({"--add-irk", " Telefoon van Zoë "}).name, "Telefoon van Zoë");
    EXPECT_FALSE(add({"--add-irk", "Telefoon"}).sameAs);
    EXPECT_EQ(add({"--add-irk", "Telefoon", "--same-as", bond}).sameAs, Uuid::parse(bond));
    EXPECT_EQ(fault({"--add-irk"}), "--add-irk verwacht een naam voor het apparaat");
    EXPECT_EQ(fault({"--add-irk", " "}), "--add-irk verwacht een naam voor het apparaat");
    EXPECT_EQ(fault({"--add-irk", "--same-as"}), "--add-irk verwacht een naam voor het apparaat");
    EXPECT_EQ(fault({"--add-irk", "a\xFF"}), "--add-irk: geen bruikbare naam");
    EXPECT_EQ(fault({"--add-irk", std::string(249, 'a')}), "--add-irk: geen bruikbare naam");
    EXPECT_EQ(fault({"--add-irk", "a", "--same-as"}), "--same-as verwacht een id (zie --devices)");
    EXPECT_EQ(fault({"--add-irk", "a", "--same-as", "b"}), "--same-as: geen geldig id: b");
    EXPECT_EQ(fault({"--same-as", bond}), "--same-as hoort bij --add-irk NAAM");
    EXPECT_EQ(fault({"--add-irk", "a", "--keys"}), "--keys gaat niet samen met --add-irk");
}

TEST(Arguments, WhyMayNameATimeOrANumber) {
    const auto why = [](const std::vector<std::string_view>& words) {
        return std::get<command::Why>(*parseArguments(words));
    };
    EXPECT_EQ(why({"why"}).last, 1U);
    EXPECT_EQ(why({"why"}).at, "");
    EXPECT_EQ(why({"why", "--at", "12:31"}).at, "12:31");
    EXPECT_EQ(why({"why", "--last", "3", "--json"}).last, 3U);
    EXPECT_TRUE(why({"why", "--last", "3", "--json"}).json);
    EXPECT_TRUE(why({"--json", "why"}).json);
    EXPECT_EQ(fault({"why", "--at"}), "--at verwacht een tijd");
    EXPECT_EQ(fault({"why", "--last", "--json"}), "--last verwacht een aantal");
    for (const char* const number : {"0", "x", "1x", "99999999999999999999999"})
        EXPECT_EQ(fault({"why", "--last", number}), "--last: geen aantal: " + std::string(number));
    EXPECT_EQ(fault({"why", "12:31"}), "onbekend woord 12:31 (zie --help)");
}

TEST(Arguments, TheHistoryIsShownOrCleared) {
    const auto history = [](const std::vector<std::string_view>& words) {
        return std::get<command::History>(*parseArguments(words));
    };
    EXPECT_FALSE(history({"history"}).clear);
    EXPECT_EQ(history({"history", "--since", "2026-11-22", "--csv"}).since, "2026-11-22");
    EXPECT_TRUE(history({"history", "--since", "2026-11-22", "--csv"}).csv);
    EXPECT_TRUE(history({"history", "--json"}).json);
    EXPECT_TRUE(history({"history", "--clear"}).clear);
    EXPECT_EQ(fault({"history", "--since"}), "--since verwacht een tijd");
    EXPECT_TRUE(asksFor<command::Insight>({"insight"}));
    EXPECT_EQ(fault({"insight", "why"}), "why gaat niet samen met insight");
}

TEST(Arguments, AnythingElseIsNamedInOneLine) {
    EXPECT_EQ(fault({"--onzin"}), "onbekende schakelaar --onzin (zie --help)");
    EXPECT_EQ(fault({"onzin"}), "onbekend woord onzin (zie --help)");
    EXPECT_EQ(fault({""}), "onbekend woord  (zie --help)");
    EXPECT_EQ(fault({"--add-key"}), "--add-key verwacht een id (zie --devices)");
    EXPECT_EQ(fault({"--add-key", "telefoon"}), "--add-key: geen geldig id: telefoon");
    EXPECT_EQ(fault({"--keys", "--demo"}), "--demo gaat niet samen met --keys");
    EXPECT_EQ(fault({"--others"}), "--others hoort bij --devices");
    EXPECT_EQ(fault({"--lock"}), "--lock hoort bij --check");
    EXPECT_EQ(fault({"--demo", "--json"}), "--json hoort bij --check");
}
