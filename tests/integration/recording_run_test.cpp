// The program itself with --record, on a bus with a radio and a logind that the test plays: what it
// recorded is replayed, and the replay does at its times what the program did.

#include "model/linux/preferences_file.h"
#include "scanner/bluez/device_id.h"
#include "tests/support/look_alike_bluez.h"
#include "tests/support/look_alike_logind.h"
#include "tests/support/program.h"
#include "trace/reader.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <map>
#include <memory>
#include <optional>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace wegslot;
namespace fs = std::filesystem;
using Json = nlohmann::json;
using RealClock = std::chrono::steady_clock;

namespace {

constexpr auto ownName = "Sleutelbos van Jan";
constexpr auto keyName = "Jan zijn tag";

/// A line of the log, and when it was written: since the first one, which is of the core's
/// beginning.
struct Logged {
    std::string message;
    Seconds at;
};

/// The program's own stamp, which knows whole seconds only.
std::time_t instantOf(const std::string& stamp) {
    std::tm time{};
    std::istringstream(stamp) >> std::get_time(&time, "%Y-%m-%d %H:%M:%S");
    return timegm(&time);
}

/// What an adapter of the program says is no business of the core's.
bool isOfTheCore(const Logged& line) {
    return !line.message.starts_with("Signaal van verbindingen");
}

/// A replay's clock on the wall begins with a whole second.
std::string withoutHour(const std::string& message) {
    static const std::regex hour("[0-9-]{10} [0-9:]{8}");
    return std::regex_replace(message, hour, "T");
}

const std::string display = ":" + std::to_string(100 + getpid() % 50000);

void person(const std::vector<std::string>& does) {
    std::vector<std::string> words{"xdotool"};
    words.insert(words.end(), does.begin(), does.end());
    Program tool({.words = words, .environment = {{"DISPLAY", display}}});
    ASSERT_EQ(tool.ended(), 0) << tool.output();
}

struct RecordingRunTest : testing::Test {
    BusLoop loop; // the system's bus and the session's at once
    TemporaryFolder home;
    LookAlikeBluez bluez{loop};
    LookAlikeLogind logind{loop};
    std::unique_ptr<Program> program;
    bool handsOn = false; ///< somebody moves the mouse
    std::vector<Logged> log;
    std::optional<RealClock::time_point> began;
    std::map<std::string, std::string> environment{
        {"HOME", home.path().string()},
        {"XDG_CONFIG_HOME", (home.path() / "config").string()},
        {"XDG_RUNTIME_DIR", home.path().string()},
        {"DBUS_SYSTEM_BUS_ADDRESS", loop.daemon.address()},
        {"DBUS_SESSION_BUS_ADDRESS", loop.daemon.address()},
        {"XDG_SESSION_ID", ""},
        {"WAYLAND_DISPLAY", ""},
        {"DISPLAY", ""},
        {"PULSE_SERVER", ""}};

    void SetUp() override {
        bluez.addAdapter();
        bluez.addDevice(someAddress, {},
                        {{"AddressType", std::string("public")}, {"Name", std::string(ownName)}});
        const fs::path file = PreferencesFile::pathUnder(home.path() / "config");
        fs::create_directories(file.parent_path());
        const Json key{{"id", deviceId(someAddress, "public").text()},
                       {"name", keyName},
                       {"isApple", false},
                       {"threshold", -70}};
        std::ofstream(file)
            << Json{{"keys", {key}}, {"awayDelay", 2}, {"warningSeconds", 2}}.dump();
    }

    void start(const std::vector<std::string>& further = {}) {
        std::vector<std::string> words{WEGSLOT_PROGRAM, "--record", trace()};
        words.insert(words.end(), further.begin(), further.end());
        program =
            std::make_unique<Program>(Program::Start{.words = words, .environment = environment});
        ASSERT_TRUE(loop.runUntil([this] { return read() && began; })) << program->output();
    }

    [[nodiscard]] std::string trace() const { return (home.path() / "trace").string(); }

    /// Notes what the log says by now.
    bool read() {
        const auto lines = home.lines("Library/Logs/Wegslot.log");
        constexpr std::size_t stamp = 20; // "2026-11-15 23:50:00 "
        for (std::size_t i = log.size(); i < lines.size(); ++i) {
            if (!began) began = RealClock::now();
            const double seconds = std::difftime(instantOf(lines[i]), instantOf(lines[0]));
            log.push_back({lines[i].substr(stamp), Seconds{seconds}});
        }
        return true;
    }

    [[nodiscard]] std::ptrdiff_t times(const std::string& beginning) const {
        return std::ranges::count_if(
            log, [&](const Logged& line) { return line.message.starts_with(beginning); });
    }

    /// Waits for the middle between two beats of the core, so that nothing is near a bound.
    void betweenBeats() {
        using namespace std::chrono_literals;
        const auto elapsed = RealClock::now() - *began;
        const auto next = *began + std::chrono::ceil<std::chrono::seconds>(elapsed - 500ms) + 500ms;
        ASSERT_TRUE(loop.runUntil([&] { return read() && RealClock::now() >= next; }));
    }

    /// The key is heard once a second until the log has had `count` lines with this beginning.
    void hearUntil(std::int16_t rssi, const std::string& beginning, std::ptrdiff_t count = 1) {
        for (int second = 0; times(beginning) < count; ++second) {
            ASSERT_LT(second, 200) << "never: " << beginning;
            betweenBeats();
            bluez.report(someAddress, rssi);
            if (handsOn) person({"mousemove_relative", "5", "3"});
        }
    }

    void end() {
        betweenBeats();
        program->signal(SIGTERM);
        EXPECT_EQ(program->ended(), 0);
        read();
    }

    /// The replay says what the program said, goes through `phases`, and asks for the lock as
    /// often; each at its time, but for the stamps' fractions and for a beat that was run late.
    void expectReplayed(const std::vector<std::string>& phases) {
        std::vector<Logged> again;
        std::vector<std::string> phasesAgain;
        long locks = 0;
        for (const Json& line : replayed()) {
            const Seconds at{line.at("t").get<double>()};
            if (line.contains("log")) again.push_back({line["log"], at});
            if (line.contains("phase")) phasesAgain.push_back(line["phase"]);
            if (line.contains("lock")) ++locks;
        }
        std::erase_if(log, [](const Logged& line) { return !isOfTheCore(line); });
        ASSERT_EQ(again.size(), log.size());
        for (std::size_t i = 0; i < log.size(); ++i) {
            EXPECT_EQ(withoutHour(again[i].message), withoutHour(log[i].message));
            EXPECT_NEAR(again[i].at.count(), log[i].at.count(), 2) << log[i].message;
        }
        EXPECT_EQ(phasesAgain, phases);
        EXPECT_EQ(locks, logind.service.calls("Lock"));
    }

    [[nodiscard]] std::vector<Json> replayed() const {
        Program replay({.words = {REPLAY_PROGRAM, trace()}});
        EXPECT_EQ(replay.ended(), 0) << replay.output();
        std::vector<Json> lines;
        std::istringstream output(replay.output());
        for (std::string line; std::getline(output, line);)
            lines.push_back(Json::parse(line, nullptr, false));
        return lines;
    }
};

} // namespace

TEST_F(RecordingRunTest, ADepartureAndAReturnAreReplayedAtTheirTimes) {
    start();
    hearUntil(-50, "Sleutel in de buurt, bewaking actief");
    hearUntil(-85, "Mac wordt gelockt");
    betweenBeats();
    EXPECT_EQ(logind.service.calls("Lock"), 1);
    logind.setHint(true);
    betweenBeats();
    bluez.report(someAddress, -50);
    betweenBeats();
    logind.setHint(false);
    hearUntil(-50, "Sleutel in de buurt, bewaking actief", 2);
    end();
    expectReplayed({"present", "leaving", "warning", "locked", "waitingForReturn", "present"});
    EXPECT_EQ(fs::status(trace()).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(RecordingRunTest, HandsOnTheMouseAreReplayedAtTheirTimes) {
    for (const char* const tool : {"Xvfb", "xdotool"})
        if (!isInstalled(tool)) GTEST_SKIP() << "no " << tool;
    Program server({.words = {"Xvfb", display, "-noreset", "-nolisten", "tcp", "-displayfd", "1"}});
    ASSERT_TRUE(becomesTrue([&] { return displayOf(server) == display; })) << server.output();
    environment["DISPLAY"] = display;
    environment["XDG_SESSION_TYPE"] = "x11";
    start();
    hearUntil(-50, "Sleutel in de buurt, bewaking actief");
    handsOn = true;
    hearUntil(-85, "Status: paused");
    handsOn = false;
    hearUntil(-85, "Waarschuwing: "); // ten seconds later
    handsOn = true;
    hearUntil(-85, "Waarschuwing geannuleerd");
    end();
    expectReplayed({"present", "leaving", "paused", "warning", "snoozed"});
}

TEST_F(RecordingRunTest, AKillLosesTheLastLineAtMost) {
    start();
    hearUntil(-50, "Sleutel in de buurt, bewaking actief");
    // Reports without end, so that it is killed while it writes.
    std::int16_t rssi = -60;
    ASSERT_TRUE(loop.runUntil([&] {
        rssi = rssi == -60 ? -50 : static_cast<std::int16_t>(rssi - 1);
        bluez.report(someAddress, rssi);
        return home.lines("trace").size() > 20;
    }));
    kill(program->process(), SIGKILL);
    EXPECT_EQ(program->ended(), 128 + SIGKILL);

    const auto lines = home.lines("trace");
    TraceReader reader;
    for (std::size_t i = 0; i + 1 < lines.size(); ++i)
        EXPECT_TRUE(reader.read(lines[i])) << lines[i];
}

TEST_F(RecordingRunTest, AnAnonymousOneNamesNobody) {
    start({"--anonymous"});
    hearUntil(-50, "Sleutel in de buurt, bewaking actief");
    program->signal(SIGTERM);
    EXPECT_EQ(program->ended(), 0);
    const std::string all = home.read("trace");
    const std::string id = deviceId(someAddress, "public").text();
    for (const std::string& telling : {std::string(ownName), std::string(keyName),
                                       std::string(someAddress), id, std::string("Jan")})
        EXPECT_EQ(all.find(telling), std::string::npos) << telling << " in\n" << all;
    EXPECT_NE(all.find("Apparaat 1"), std::string::npos);
    bool isNear = false;
    for (const Json& line : replayed())
        isNear = isNear || line.value("phase", "") == "present";
    EXPECT_TRUE(isNear);
}

TEST_F(RecordingRunTest, AReaderThatGoesEndsTheRecordingAndNotWegslot) {
    const std::string fifo = trace();
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    const int reader = open(fifo.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    start();
    close(reader);
    ASSERT_TRUE(loop.runUntil([this] {
        bluez.report(someAddress, -50);
        return read() && times("Opname gestopt: Broken pipe") == 1;
    })) << program->output();
    EXPECT_TRUE(program->isRunning());
}

TEST_F(RecordingRunTest, APipeThatIsFullHoldsUpNeitherTheJudgementNorTheEnd) {
    const std::string fifo = trace();
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    const int reader = open(fifo.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    const std::string block(4096, 'x');
    while (write(reader, block.data(), block.size()) > 0) {
    }
    start();
    hearUntil(-50, "Sleutel in de buurt, bewaking actief");
    program->signal(SIGTERM);
    EXPECT_EQ(program->ended(), 0);
    close(reader);
}
