#include "monitor/pause.h"

namespace wegslot {
namespace {

struct Text {
    std::string operator()(const pause::Active&) const { return "Je gebruikt je Mac"; }

    std::string operator()(const pause::Meeting& meeting) const { return meeting.text; }
};

} // namespace

void Snooze::startManual(TimePoint until) {
    until_ = until;
    isManual_.set(true);
}

void Snooze::startAutomatic(TimePoint until) {
    until_ = until;
    isManual_.set(false);
}

void Snooze::end() {
    until_.reset();
    isManual_.set(false);
}

void Snooze::endAutomatic() {
    if (!isManual_.get()) until_.reset();
}

bool Snooze::holds(TimePoint now, bool keysNotNear) {
    if (!until_) return false;
    if (now < *until_ && (keysNotNear || isManual_.get())) return true;
    end();
    return false;
}

std::optional<PauseReason> pauseReason(const Settings& settings, ActivityDetector& activity) {
    if (settings.pauseWhileActive.get() && activity.idleSeconds() < activityWindow)
        return pause::Active{};
    if (!settings.pauseDuringMeetings.get()) return std::nullopt;
    if (activity.cameraInUse()) return pause::Meeting{"Camera is in gebruik"};
    if (const auto user = activity.microphoneUser())
        return pause::Meeting{"Microfoon in gebruik door " + *user};
    return std::nullopt;
}

std::string text(const PauseReason& reason) { return std::visit(Text{}, reason); }

} // namespace wegslot
