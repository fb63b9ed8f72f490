#include "hud/linux/warning_sound.h"

#include "base/application_id.h"

#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include <canberra.h>

namespace wegslot {

/// What the thread of a sound shares with whoever had it started.
struct WarningSound::Playing {
    std::mutex mutex{};
    std::condition_variable changed{};
    bool isUnderWay = false; ///< there is a thread
    bool hasEnded = false;   ///< the sound, as its server says
    bool isUnwanted = false; ///< whoever asked for it has gone

    /// Sets a member, and wakes whoever waits for that.
    void set(bool Playing::*member, bool value) {
        const std::lock_guard lock(mutex);
        this->*member = value;
        changed.notify_all();
    }
};

namespace {

/// Far longer than the sound of any theme.
constexpr std::chrono::seconds longestSound{10};

template <auto end>
struct End {
    void operator()(auto* object) const { end(object); }
};

} // namespace

void WarningSound::play(Playing& playing) {
    ca_context* context = nullptr;
    if (ca_context_create(&context) != CA_SUCCESS) return;
    const std::unique_ptr<ca_context, End<ca_context_destroy>> owned(context);
    // No other: ALSA, which is tried next, complains on our terminal where there is no sound card.
    ca_context_set_driver(context, "pulse");
    ca_proplist* properties = nullptr;
    if (ca_proplist_create(&properties) != CA_SUCCESS) return;
    const std::unique_ptr<ca_proplist, End<ca_proplist_destroy>> ownedProperties(properties);
    ca_proplist_sets(properties, CA_PROP_APPLICATION_NAME, "Wegslot");
    ca_proplist_sets(properties, CA_PROP_APPLICATION_ID, applicationId);
    ca_proplist_sets(properties, CA_PROP_EVENT_ID, "window-attention");
    ca_proplist_sets(properties, CA_PROP_MEDIA_ROLE, "event");
    const auto finished = [](ca_context*, std::uint32_t, int, void* data) {
        static_cast<Playing*>(data)->set(&Playing::hasEnded, true);
    };
    playing.set(&Playing::hasEnded, false);
    if (ca_context_play_full(context, 0, properties, finished, &playing) != CA_SUCCESS) return;
    std::unique_lock lock(playing.mutex);
    playing.changed.wait_for(lock, longestSound,
                             [&] { return playing.hasEnded || playing.isUnwanted; });
}

WarningSound::WarningSound() : playing_(std::make_shared<Playing>()) {}

WarningSound::~WarningSound() {
    playing_->set(&Playing::isUnwanted, true);
    std::unique_lock lock(playing_->mutex);
    playing_->changed.wait_for(lock, patience, [this] { return !playing_->isUnderWay; });
}

void WarningSound::show(TimePoint, Seconds, const Message&, std::function<void()>) {
    {
        const std::lock_guard lock(playing_->mutex);
        if (std::exchange(playing_->isUnderWay, true)) return;
    }
    try {
        std::thread([playing = playing_] {
            play(*playing);
            playing->set(&Playing::isUnderWay, false);
        }).detach();
    } catch (const std::system_error&) { // no thread to be had, so no sound
        playing_->set(&Playing::isUnderWay, false);
    }
}

} // namespace wegslot
