#include "platform/linux/media/pipewire_cameras.h"

#include "platform/linux/media/pipewire_daemon.h"

namespace wegslot {

PipeWireCameras::PipeWireCameras(Descriptors& descriptors, Scheduler& scheduler)
    : library_(std::make_unique<pipewire::Library>()) {
    if (!library_->isUsable()) return;
    readable_ = descriptors.onReadable(library_->descriptor(), [this] { read(); });
    attempts_ = scheduler.every(betweenAttempts, [this] { connect(); });
    connect();
}

PipeWireCameras::~PipeWireCameras() = default;

std::optional<bool> PipeWireCameras::inUse() {
    if (!daemon_) return std::nullopt;
    const bool answered = daemon_->answers(answerPatience);
    const bool runs = answered && daemon_->cameraRuns();
    dropIfLost();
    return answered ? std::optional(runs) : std::nullopt;
}

void PipeWireCameras::connect() {
    if (!daemon_) daemon_ = pipewire::Daemon::find(*library_);
    dropIfLost();
}

void PipeWireCameras::read() {
    library_->turn(std::chrono::milliseconds{0});
    dropIfLost();
}

void PipeWireCameras::dropIfLost() {
    if (daemon_ && daemon_->isLost()) daemon_.reset(); // never from within its own callback
}

} // namespace wegslot
