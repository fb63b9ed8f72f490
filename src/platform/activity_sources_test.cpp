#include "platform/activity_sources.h"

#include <gtest/gtest.h>

using namespace wegslot;

namespace {

/// A source of any kind that says what it is told to, and counts how often it is asked.
template <typename Kind, typename Answer>
class FakeSource : public Kind {
public:
    explicit FakeSource(std::optional<Answer> given) : answer(std::move(given)) {}

    [[nodiscard]] std::string name() const override { return "a source"; }
    [[nodiscard]] bool isThere() const override { return there; }

    std::optional<Answer> answer;
    bool there = true;
    int questions = 0;

protected:
    [[nodiscard]] std::optional<Answer> ask() {
        ++questions;
        return answer;
    }
};

struct FakeIdle final : FakeSource<IdleSource, Seconds> {
    using FakeSource::FakeSource;
    [[nodiscard]] std::optional<Seconds> idleTime() override { return ask(); }
};

struct FakeCamera final : FakeSource<CameraSource, bool> {
    using FakeSource::FakeSource;
    [[nodiscard]] std::optional<bool> inUse() override { return ask(); }
};

struct FakeMicrophone final : FakeSource<MicrophoneSource, MicrophoneSource::Use> {
    using FakeSource::FakeSource;
    [[nodiscard]] std::optional<Use> use() override { return ask(); }
};

} // namespace

TEST(ActivitySources, WithoutAnySourceEveryAnswerIsNeutral) {
    ActivitySources sources({}, {}, {});
    EXPECT_EQ(sources.idleSeconds(), ActivityDetector::unknownIdle);
    EXPECT_FALSE(sources.cameraInUse());
    EXPECT_EQ(sources.microphoneUser(), std::nullopt);
}

TEST(ActivitySources, TheFirstIdleSourceThatIsThereIsAskedAlone) {
    FakeIdle first{Seconds{1.0}};
    FakeIdle second{Seconds{2.5}};
    FakeIdle third{Seconds{3.0}};
    ActivitySources sources({&first, &second, &third}, {}, {});
    first.there = false;
    EXPECT_EQ(sources.idleSeconds(), Seconds{2.5});
    EXPECT_EQ(first.questions + third.questions, 0);
    first.there = true; // chosen anew at each question
    EXPECT_EQ(sources.idleSeconds(), Seconds{1.0});
}

TEST(ActivitySources, AnIdleSourceThatHangsMeansIdleForEver) {
    FakeIdle hangs{std::nullopt};
    FakeIdle other{Seconds{2.0}};
    ActivitySources sources({&hangs, &other}, {}, {});
    EXPECT_EQ(sources.idleSeconds(), ActivityDetector::unknownIdle);
    EXPECT_EQ(other.questions, 0);
}

TEST(ActivitySources, AnyCameraInUseCounts) {
    FakeCamera hangs{std::nullopt};
    FakeCamera unused{false};
    FakeCamera used{true};
    ActivitySources sources({}, {&hangs, &unused, &used}, {});
    EXPECT_TRUE(sources.cameraInUse());
    used.there = false;
    EXPECT_FALSE(sources.cameraInUse());
}

TEST(ActivitySources, TheMicrophoneUserIsPassedOn) {
    FakeMicrophone source{MicrophoneSource::Use{"Vergadering"}};
    ActivitySources sources({}, {}, {&source});
    EXPECT_EQ(sources.microphoneUser(), "Vergadering");
    source.answer = MicrophoneSource::Use{};
    EXPECT_EQ(sources.microphoneUser(), std::nullopt);
    source.answer = std::nullopt;
    EXPECT_EQ(sources.microphoneUser(), std::nullopt);
}
