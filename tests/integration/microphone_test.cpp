// Who records, on real sound servers with real programs that record: the same stories on
// PulseAudio and on PipeWire.

#include "base/virtual_time.h"
#include "platform/linux/media/pulse_microphone.h"
#include "tests/integration/media_servers.h"
#include "tests/integration/recorder.h"
#include "tests/support/waiting.h"

#include <gtest/gtest.h>

#include <cerrno>

#include <csignal>
#include <sstream>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

constexpr auto noAnswer = "(no answer)";
constexpr auto nobody = "(nobody)";

std::unique_ptr<Program> record(const std::string& id, const std::string& source = "mic") {
    std::vector<std::string> words{"parecord", "--raw", "--device=" + source, "/dev/null"};
    if (!id.empty()) words.push_back("--property=application.id=" + id);
    return std::make_unique<Program>(Program::Start{.words = std::move(words)});
}

using Row = std::vector<std::string>;

std::vector<Row> listed(const std::string& kind) {
    std::istringstream list(MediaSession::run({"pactl", "list", "short", kind}).value_or(""));
    std::vector<Row> rows;
    for (std::string line; std::getline(list, line);) {
        std::istringstream fields(line);
        rows.emplace_back();
        for (std::string field; std::getline(fields, field, '\t');)
            rows.back().push_back(field);
    }
    return rows;
}

/// The streams that record from `source`, as the server's own tool sees it.
std::vector<std::string> streamsOn(const std::string& source) {
    std::vector<std::string> numbers;
    for (const Row& row : listed("sources"))
        for (const Row& stream : listed("source-outputs"))
            if (row.at(1) == source && stream.at(1) == row.at(0)) numbers.push_back(stream.at(0));
    return numbers;
}

bool streamsBecome(std::size_t count, const std::string& source = "mic") {
    return becomesTrue([&] { return streamsOn(source).size() == count; });
}

} // namespace

using MakeServer = std::unique_ptr<SoundServer> (*)();

class MicrophoneTest : public testing::TestWithParam<MakeServer> {
protected:
    void SetUp() override {
        server = GetParam()();
        auto needed = server->needs();
        needed.insert(needed.end(), {"dbus-daemon", "parecord"});
        if (const auto missing = firstMissing(needed))
            GTEST_SKIP() << *missing << " is not installed";
        session.emplace();
        std::filesystem::create_directories(data.path() / "applications");
        data.write("applications/org.praat.App.desktop", "[Desktop Entry]\nName=Praat\n");
    }

    [[nodiscard]] bool startBoth() {
        if (!server->start()) return false;
        microphone.emplace(time, names);
        // An attempt that a busy server lets down is followed by another, as time goes on.
        return becomesTrue([this] {
            time.advance(PulseMicrophone::betweenAttempts);
            return microphone->isThere();
        });
    }

    [[nodiscard]] std::string answer() {
        const auto use = microphone->use();
        return use ? use->user.value_or(nobody) : noAnswer;
    }

    /// The next answer, however late a busy machine gives it.
    [[nodiscard]] std::string soon() {
        std::string given = noAnswer;
        static_cast<void>(becomesTrue([&] {
            given = answer();
            return given != noAnswer;
        }));
        return given;
    }

    [[nodiscard]] bool becomes(const std::string& expected) {
        return becomesTrue([&] { return answer() == expected; });
    }

    std::optional<MediaSession> session;
    std::unique_ptr<SoundServer> server;
    TemporaryFolder data;
    ApplicationNames names{{data.path()}};
    VirtualTime time{TimePoint{1000h}};
    std::optional<PulseMicrophone> microphone;
};

TEST_P(MicrophoneTest, NobodyRecordsUntilSomebodyDoesAndAfter) {
    ASSERT_TRUE(startBoth());
    EXPECT_EQ(soon(), nobody);
    const auto program = record("");
    EXPECT_TRUE(becomes("pacat"));
    program->stop();
    EXPECT_TRUE(becomes(nobody));
}

TEST_P(MicrophoneTest, AnApplicationIdIsShownByItsDisplayName) {
    ASSERT_TRUE(startBoth());
    const auto program = record("org.praat.App");
    EXPECT_TRUE(becomes("Praat"));
}

TEST_P(MicrophoneTest, OfTwoTheFirstIsNamedAndThenTheOther) {
    ASSERT_TRUE(startBoth());
    const auto first = record("first");
    ASSERT_TRUE(becomes("first"));
    const auto second = record("second");
    ASSERT_TRUE(streamsBecome(2));
    EXPECT_EQ(soon(), "first");
    first->stop();
    EXPECT_TRUE(becomes("second"));
}

TEST_P(MicrophoneTest, RecordingWhatALoudspeakerPlaysIsNoMicrophone) {
    ASSERT_TRUE(startBoth());
    const auto listener = record("listener", "nul.monitor");
    ASSERT_TRUE(streamsBecome(1, "nul.monitor"));
    EXPECT_EQ(soon(), nobody);
    const auto caller = record("caller");
    EXPECT_TRUE(becomes("caller"));
}

TEST_P(MicrophoneTest, AStreamThatIsMovedToAMonitorCountsNoLonger) {
    ASSERT_TRUE(startBoth());
    const auto program = record("caller");
    ASSERT_TRUE(becomes("caller"));
    const auto number = streamsOn("mic").front();
    ASSERT_TRUE(becomesTrue([&number] { // one that comes while a move is under way is forgotten
        return MediaSession::run({"pactl", "move-source-output", number, "nul.monitor"}) &&
               streamsOn("nul.monitor").size() == 1;
    }));
    EXPECT_EQ(soon(), nobody);
}

TEST_P(MicrophoneTest, AStreamOfTheServersOwnDoesNotCount) {
    ASSERT_TRUE(startBoth());
    ASSERT_TRUE(
        MediaSession::run({"pactl", "load-module", "module-loopback", "source=mic", "sink=nul"}));
    ASSERT_TRUE(streamsBecome(1));
    EXPECT_EQ(soon(), nobody);
}

TEST_P(MicrophoneTest, AMutedStreamStillCounts) {
    ASSERT_TRUE(startBoth());
    const auto program = record("caller");
    ASSERT_TRUE(becomes("caller"));
    ASSERT_TRUE(
        MediaSession::run({"pactl", "set-source-output-mute", streamsOn("mic").front(), "1"}));
    EXPECT_EQ(soon(), "caller");
}

TEST_P(MicrophoneTest, ACorkedStreamDoesNotCountUntilItGoesOn) {
    ASSERT_TRUE(startBoth());
    Recorder recorder("praat", "mic", PA_STREAM_START_CORKED);
    ASSERT_TRUE(recorder.isReady());
    ASSERT_TRUE(streamsBecome(1));
    EXPECT_EQ(soon(), nobody);
    recorder.cork(false);
    EXPECT_TRUE(becomes(program_invocation_short_name));
    recorder.cork(true);
    EXPECT_TRUE(becomes(nobody));
}

TEST_P(MicrophoneTest, ALevelMeterDoesNotCount) {
    ASSERT_TRUE(startBoth());
    Recorder meter("meter", "mic", PA_STREAM_PEAK_DETECT);
    ASSERT_TRUE(meter.isReady());
    ASSERT_TRUE(streamsBecome(1));
    EXPECT_EQ(soon(), nobody);
    const auto program = record("caller");
    EXPECT_TRUE(becomes("caller"));
}

TEST_P(MicrophoneTest, AVolumeControlDoesNotCount) {
    ASSERT_TRUE(startBoth());
    const auto control = record("org.gnome.VolumeControl");
    ASSERT_TRUE(streamsBecome(1));
    EXPECT_EQ(soon(), nobody);
}

TEST_P(MicrophoneTest, AServerThatHangsAnswersNothingAndThenAgain) {
    ASSERT_TRUE(startBoth());
    const auto program = record("caller");
    ASSERT_TRUE(becomes("caller"));
    server->signal(SIGSTOP);
    ASSERT_TRUE(becomes(noAnswer));
    EXPECT_TRUE(microphone->isThere());
    const long before = waitsSoFar();
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(answer(), noAnswer);
    EXPECT_LT(waitsSoFar() - before, 50); // one for each would be a hundred
    server->signal(SIGCONT);
    EXPECT_TRUE(becomes("caller"));
}

TEST_P(MicrophoneTest, AServerThatHangsHoldsUpNoEnd) {
    ASSERT_TRUE(startBoth());
    server->signal(SIGSTOP);
    ASSERT_TRUE(becomes(noAnswer));
    microphone.reset();
    microphone.emplace(time, names); // nor a connection that is under way
    EXPECT_FALSE(microphone->isThere());
    EXPECT_EQ(answer(), noAnswer);
    microphone.reset();
    microphone.emplace(time, names);
    server->signal(SIGCONT);
    EXPECT_TRUE(becomesTrue([this] { return microphone->isThere(); }));
    EXPECT_EQ(soon(), nobody);
}

TEST_P(MicrophoneTest, AServerThatDiesIsNotThereAndIsFoundWhenItIsBack) {
    ASSERT_TRUE(startBoth());
    server->signal(SIGKILL);
    EXPECT_TRUE(becomesTrue([this] { return !microphone->isThere(); }));
    EXPECT_EQ(answer(), noAnswer);
    time.advance(PulseMicrophone::betweenAttempts); // in vain
    ASSERT_TRUE(server->start());
    const auto program = record("caller");
    ASSERT_TRUE(streamsBecome(1));
    EXPECT_TRUE(becomesTrue([this] {
        time.advance(PulseMicrophone::betweenAttempts);
        return microphone->isThere();
    }));
    EXPECT_TRUE(becomes("caller"));
}

TEST_P(MicrophoneTest, AServerThatDiesWhileItIsAskedAnswersNothing) {
    ASSERT_TRUE(startBoth());
    server->signal(SIGSTOP);
    ASSERT_TRUE(becomes(noAnswer));
    server->signal(SIGKILL);
    EXPECT_TRUE(becomesTrue([this] { return !microphone->isThere(); }));
    ASSERT_TRUE(server->start());
    EXPECT_TRUE(becomesTrue([this] {
        time.advance(PulseMicrophone::betweenAttempts);
        return microphone->isThere();
    }));
    EXPECT_EQ(soon(), nobody);
}

TEST_P(MicrophoneTest, AServerIsLookedForEachFiveSeconds) {
    microphone.emplace(time, names);
    EXPECT_FALSE(microphone->isThere());
    EXPECT_EQ(answer(), noAnswer);
    ASSERT_TRUE(server->start());
    ASSERT_TRUE(becomesTrue([] { return MediaSession::run({"pactl", "info"}).has_value(); }));
    time.advance(PulseMicrophone::betweenAttempts - 1ns);
    EXPECT_FALSE(microphone->isThere());
    time.advance(1ns);
    EXPECT_TRUE(becomesTrue([this] { return microphone->isThere(); }));
    EXPECT_EQ(soon(), nobody);
}

/// What only programs of PipeWire's own do.
class PipeWireMicrophoneTest : public MicrophoneTest {};

TEST_P(PipeWireMicrophoneTest, AStreamThatDoesNotNameItsProgramIsNamedByItsClient) {
    ASSERT_TRUE(startBoth());
    const Program program({.words = {"pw-record", "--target=mic", data.path() / "opname.wav"}});
    EXPECT_TRUE(becomes("pw-cat")) << program.output(); // pw-record is a link to that
}

namespace {

template <typename Server>
std::unique_ptr<SoundServer> make() {
    return std::make_unique<Server>();
}

} // namespace

INSTANTIATE_TEST_SUITE_P(PulseAudio, MicrophoneTest, testing::Values(make<PulseAudioServer>));
INSTANTIATE_TEST_SUITE_P(PipeWire, MicrophoneTest, testing::Values(make<PipeWireSoundServer>));
INSTANTIATE_TEST_SUITE_P(PipeWire, PipeWireMicrophoneTest,
                         testing::Values(make<PipeWireSoundServer>));
