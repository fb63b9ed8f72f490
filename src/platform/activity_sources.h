// What can be asked about the user's activity, one kind of service for each question, and the
// detector that asks them. A source knows whether its service is there; a service that does not
// answer in time counts as having no answer.
#pragma once

#include "platform/activity_detector.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace wegslot {

/// How long a source may wait for its service: a person does not notice, and the tick of a second
/// is not late.
inline constexpr std::chrono::milliseconds answerPatience{90};

class ActivitySource {
public:
    ActivitySource() = default;
    ActivitySource(const ActivitySource&) = delete;
    ActivitySource& operator=(const ActivitySource&) = delete;
    virtual ~ActivitySource() = default;

    /// What people call the service, for `--check`.
    [[nodiscard]] virtual std::string name() const = 0;

    /// Whether the service can be asked now, as far as is known; asks nobody.
    [[nodiscard]] virtual bool isThere() const = 0;
};

class IdleSource : public ActivitySource {
public:
    /// Since the last key or mouse input, 0 or more; nothing when no answer came in time.
    [[nodiscard]] virtual std::optional<Seconds> idleTime() = 0;

    /// Whether a film that plays counts as hands for two minutes, and hides them afterwards.
    [[nodiscard]] virtual bool canBeHeldUp() const { return false; }
};

class CameraSource : public ActivitySource {
public:
    /// Whether any camera is in use; nothing when no answer came in time.
    [[nodiscard]] virtual std::optional<bool> inUse() = 0;
};

class MicrophoneSource : public ActivitySource {
public:
    struct Use {
        /// The display name of the first application that records; nothing when none does.
        std::optional<std::string> user;
    };

    /// Nothing when no answer came in time.
    [[nodiscard]] virtual std::optional<Use> use() = 0;
};

class ActivitySources final : public ActivityDetector {
public:
    /// `idle` and `microphones` in order of preference: the first that is there is asked, and no
    /// other, for two that hang would hold up twice as long. Any camera counts. All must outlive
    /// this.
    ActivitySources(std::vector<IdleSource*> idle, std::vector<CameraSource*> cameras,
                    std::vector<MicrophoneSource*> microphones)
        : idle_(std::move(idle)),
          cameras_(std::move(cameras)),
          microphones_(std::move(microphones)) {}

    [[nodiscard]] Seconds idleSeconds() override {
        const auto source = firstThere(idle_);
        return source == nullptr ? unknownIdle : source->idleTime().value_or(unknownIdle);
    }

    [[nodiscard]] bool cameraInUse() override {
        return std::ranges::any_of(cameras_, [](CameraSource* source) {
            return source->isThere() && source->inUse().value_or(false);
        });
    }

    [[nodiscard]] std::optional<std::string> microphoneUser() override {
        const auto source = firstThere(microphones_);
        const auto use = source == nullptr ? std::nullopt : source->use();
        return use ? use->user : std::nullopt;
    }

    [[nodiscard]] const std::vector<IdleSource*>& idle() const { return idle_; }
    [[nodiscard]] const std::vector<CameraSource*>& cameras() const { return cameras_; }
    [[nodiscard]] const std::vector<MicrophoneSource*>& microphones() const { return microphones_; }

private:
    template <typename Source>
    [[nodiscard]] static Source* firstThere(const std::vector<Source*>& sources) {
        const auto there = std::ranges::find_if(sources, &Source::isThere);
        return there == sources.end() ? nullptr : *there;
    }

    std::vector<IdleSource*> idle_;
    std::vector<CameraSource*> cameras_;
    std::vector<MicrophoneSource*> microphones_;
};

} // namespace wegslot
