#include "hud/linux/warning_sound.h"

#include <chrono>
#include <future>
#include <system_error>
#include <thread>

#include <canberra.h>

namespace wegslot {
namespace {

/// Far longer than the sound of any theme.
constexpr std::chrono::seconds longestSound{10};

template <auto end>
struct End {
    void operator()(auto* object) const { end(object); }
};

/// Returns when the sound has ended, or at once when there can be none.
void play() {
    std::promise<void> ended;
    ca_context* context = nullptr;
    if (ca_context_create(&context) != CA_SUCCESS) return;
    const std::unique_ptr<ca_context, End<ca_context_destroy>> owned(context);
    // No other: ALSA, which is tried next, complains on our terminal where there is no sound card.
    ca_context_set_driver(context, "pulse");
    ca_proplist* properties = nullptr;
    if (ca_proplist_create(&properties) != CA_SUCCESS) return;
    const std::unique_ptr<ca_proplist, End<ca_proplist_destroy>> ownedProperties(properties);
    ca_proplist_sets(properties, CA_PROP_APPLICATION_NAME, "Wegslot");
    ca_proplist_sets(properties, CA_PROP_APPLICATION_ID, "nl.wegslot.Wegslot");
    ca_proplist_sets(properties, CA_PROP_EVENT_ID, "window-attention");
    ca_proplist_sets(properties, CA_PROP_MEDIA_ROLE, "event");
    const auto finished = [](ca_context*, std::uint32_t, int, void* data) {
        static_cast<std::promise<void>*>(data)->set_value();
    };
    if (ca_context_play_full(context, 0, properties, finished, &ended) != CA_SUCCESS) return;
    ended.get_future().wait_for(longestSound);
}

} // namespace

void WarningSound::show(TimePoint, Seconds, const std::string&, std::function<void()>) {
    if (isPlaying_->exchange(true)) return;
    try {
        std::thread([isPlaying = isPlaying_] {
            play();
            isPlaying->store(false);
        }).detach();
    } catch (const std::system_error&) { // no thread to be had, so no sound
        isPlaying_->store(false);
    }
}

} // namespace wegslot
