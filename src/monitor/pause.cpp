#include "monitor/pause.h"

namespace wegslot {
namespace {

struct Text {
    Message operator()(const pause::Active&) const { return message("Je gebruikt je Mac"); }

    Message operator()(const pause::Camera&) const { return message("Camera is in gebruik"); }

    Message operator()(const pause::Microphone& microphone) const {
        // Not what it is called then, but words for it.
        if (microphone.user == ActivityDetector::unnamedApplication)
            return message("Microfoon in gebruik door een app");
        return message("Microfoon in gebruik door %1", {microphone.user});
    }
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
    if (activity.cameraInUse()) return pause::Camera{};
    if (const auto user = activity.microphoneUser()) return pause::Microphone{*user};
    return std::nullopt;
}

Message text(const PauseReason& reason) { return std::visit(Text{}, reason); }

} // namespace wegslot
