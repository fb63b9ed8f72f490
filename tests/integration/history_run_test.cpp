// The program itself, on a bus with a radio and a logind that the test plays: what it keeps
// explains what it did, is judged anew as it was lived, and tells nobody's name.

#include "history/hindsight.h"
#include "history/linux/history_file.h"
#include "model/linux/preferences_file.h"
#include "monitor/monitor.h"
#include "scanner/bluez/device_id.h"
#include "tests/support/look_alike_bluez.h"
#include "tests/support/look_alike_logind.h"
#include "tests/support/program.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

using namespace wegslot;
using namespace std::chrono_literals;
namespace fs = std::filesystem;
using Json = nlohmann::json;

namespace {

constexpr auto airName = "Sleutelbos van Jan";
constexpr auto givenName = "Jan zijn tag";

struct HistoryRunTest : testing::Test {
    BusLoop loop; // the system's bus and the session's at once
    TemporaryFolder home;
    LookAlikeBluez bluez{loop};
    LookAlikeLogind logind{loop};
    std::unique_ptr<Program> program;
    const fs::path file = history::HistoryFile::pathUnder(home.path() / "state");
    std::map<std::string, std::string> environment{
        {"HOME", home.path().string()},
        {"XDG_CONFIG_HOME", (home.path() / "config").string()},
        {"XDG_STATE_HOME", (home.path() / "state").string()},
        {"XDG_RUNTIME_DIR", home.path().string()},
        {"DBUS_SYSTEM_BUS_ADDRESS", loop.daemon.address()},
        {"DBUS_SESSION_BUS_ADDRESS", loop.daemon.address()},
        {"XDG_SESSION_ID", ""},
        {"WAYLAND_DISPLAY", ""},
        {"DISPLAY", ""},
        {"LC_ALL", "C"},
        {"PULSE_SERVER", ""}};

    void SetUp() override {
        bluez.addAdapter();
        bluez.addDevice(someAddress, {},
                        {{"AddressType", std::string("public")}, {"Name", std::string(airName)}});
        keep(7);
    }

    void keep(int days) {
        const fs::path preferences = PreferencesFile::pathUnder(home.path() / "config");
        fs::create_directories(preferences.parent_path());
        const Json key{{"id", deviceId(someAddress, "public").text()},
                       {"name", givenName},
                       {"isApple", false},
                       {"threshold", -70}};
        std::ofstream(preferences) << Json{
            {"keys", {key}},
            {"awayDelay", 2},
            {"warningSeconds", 2},
            {"historyDays", days}}.dump();
    }

    void start() {
        program = std::make_unique<Program>(
            Program::Start{.words = {WEGSLOT_PROGRAM}, .environment = environment});
    }

    [[nodiscard]] std::ptrdiff_t logged(const std::string& words) {
        return std::ranges::count_if(
            home.lines("Library/Logs/Wegslot.log"),
            [&words](const std::string& line) { return line.find(words) != std::string::npos; });
    }

    /// The key is heard a few times a second until the log has these words.
    void hearUntil(std::int16_t rssi, const std::string& words, std::ptrdiff_t times = 1) {
        auto next = std::chrono::steady_clock::now();
        ASSERT_TRUE(loop.runUntil([&] {
            if (std::chrono::steady_clock::now() >= next) {
                next = std::chrono::steady_clock::now() + 300ms;
                bluez.report(someAddress, rssi);
            }
            return logged(words) >= times;
        })) << words
            << "\n"
            << program->output();
    }

    /// What a command says, which is asked beside the program and waits for nobody on the bus.
    [[nodiscard]] std::string asked(std::vector<std::string> words, int status = 0) const {
        words.insert(words.begin(), WEGSLOT_PROGRAM);
        Program command({.words = std::move(words), .environment = environment});
        EXPECT_EQ(command.ended(), status) << command.output();
        return command.output();
    }

    void leaveAndComeBack() {
        hearUntil(-50, "Sleutel in de buurt, bewaking actief");
        hearUntil(-85, "Mac wordt gelockt");
        logind.setHint(true);
        // Locked for more than a tick, so that one judges the locked screen.
        const auto unlocked = std::chrono::steady_clock::now() + 2 * Monitor::tickInterval;
        ASSERT_TRUE(loop.runUntil([&] { return std::chrono::steady_clock::now() >= unlocked; }));
        logind.setHint(false);
        hearUntil(-50, "Sleutel in de buurt, bewaking actief", 2);
    }
};

} // namespace

TEST_F(HistoryRunTest, ALockIsExplainedWhileItRunsAndAfterwards) {
    start();
    leaveAndComeBack();
    // The minute of a lock is kept at once.
    std::string told;
    ASSERT_TRUE(loop.runUntil([&] { return fs::exists(file); }));
    ASSERT_TRUE(loop.runUntil([&] {
        told = asked({"why", "--last", "1", "--json"}, fs::exists(file) ? 0 : 1);
        return told.find("\"locked\"") != std::string::npos;
    })) << told;
    const Json running = Json::parse(told);
    EXPECT_EQ(running["keys"][0]["name"], givenName);
    EXPECT_EQ(running["keys"][0]["median"], -85);
    EXPECT_EQ(running["keys"][0]["threshold"], -70);

    program->signal(SIGTERM);
    EXPECT_EQ(program->ended(), 0);
    const std::string after = asked({"why", "--last", "1"});
    EXPECT_NE(after.find(" Gelockt\n"), std::string::npos) << after;
    EXPECT_NE(after.find("Jan zijn tag was zwak: -85 dBm"), std::string::npos) << after;
    EXPECT_NE(after.find("Anders met: "), std::string::npos) << after;
}

TEST_F(HistoryRunTest, WhatWasLivedIsJudgedAnewAsItWas) {
    start();
    leaveAndComeBack();
    program->signal(SIGTERM);
    EXPECT_EQ(program->ended(), 0);
    const auto minutes = history::HistoryFile::readAll(file);
    ASSERT_TRUE(minutes) << minutes.failure().message.builtIn();
    const auto past = history::stretches(*minutes);
    ASSERT_EQ(past.size(), 1U);
    std::vector<std::string> lived;
    for (const history::Event& event : past[0].events)
        if (const auto* const entered = event.phase()) lived.push_back(entered->name);
    std::vector<std::string> again;
    for (const history::Outcome& outcome : judgedAnew(past[0], 0, past[0].instants.size()))
        again.emplace_back(name(outcome.phase));
    EXPECT_EQ(again, lived);
    EXPECT_NE(std::ranges::find(lived, "locked"), lived.end());
}

TEST_F(HistoryRunTest, TheFileIsTheUsersAloneAndNamesNobody) {
    start();
    hearUntil(-50, "Sleutel in de buurt, bewaking actief");
    hearUntil(-85, "Mac wordt gelockt");
    program->signal(SIGTERM);
    EXPECT_EQ(program->ended(), 0);
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(fs::status(file.parent_path()).permissions(), fs::perms::owner_all);
    const std::string id = deviceId(someAddress, "public").text();
    for (const auto& entry : fs::directory_iterator(file.parent_path())) {
        std::ifstream stream(entry.path(), std::ios::binary);
        const std::string all{std::istreambuf_iterator<char>(stream), {}};
        for (const std::string& telling :
             {std::string(airName), std::string(givenName), std::string(someAddress), id})
            EXPECT_EQ(all.find(telling), std::string::npos) << telling << " in " << entry.path();
    }
}

TEST_F(HistoryRunTest, WhoWantsNoneHasNone) {
    keep(0);
    start();
    hearUntil(-50, "Sleutel in de buurt, bewaking actief");
    hearUntil(-85, "Mac wordt gelockt");
    program->signal(SIGTERM);
    EXPECT_EQ(program->ended(), 0);
    EXPECT_FALSE(fs::exists(file));
    EXPECT_NE(asked({"why"}, 1).find("nog niets bewaard"), std::string::npos);
}

TEST_F(HistoryRunTest, ClearingRemovesItAlsoWhileItRuns) {
    start();
    hearUntil(-50, "Sleutel in de buurt, bewaking actief");
    hearUntil(-85, "Mac wordt gelockt");
    ASSERT_TRUE(loop.runUntil([&] { return fs::exists(file); }));
    EXPECT_EQ(asked({"history", "--clear"}), "");
    EXPECT_FALSE(fs::exists(file));
    EXPECT_TRUE(program->isRunning());
    program->signal(SIGTERM);
    EXPECT_EQ(program->ended(), 0);
}
