// Whether a camera is in use through PipeWire, as programs get one from the desktop's portal. Its
// loop is driven by ours; its daemon is looked for again whenever it is away.
#pragma once

#include "base/descriptors.h"
#include "base/scheduler.h"
#include "platform/activity_sources.h"

#include <memory>

namespace wegslot {

namespace pipewire {
class Daemon;
class Library;
} // namespace pipewire

class PipeWireCameras final : public CameraSource {
public:
    /// How often a daemon that is not there is looked for.
    static constexpr Nanoseconds betweenAttempts = std::chrono::seconds{5};

    /// Both must outlive this. The daemon is found by the usual variables (PIPEWIRE_REMOTE,
    /// XDG_RUNTIME_DIR).
    PipeWireCameras(Descriptors& descriptors, Scheduler& scheduler);
    ~PipeWireCameras() override;

    [[nodiscard]] std::string name() const override { return "PipeWire"; }
    [[nodiscard]] bool isThere() const override { return daemon_ != nullptr; }

    /// Waits for `answerPatience` at most, and not at all while an earlier question is unanswered.
    [[nodiscard]] std::optional<bool> inUse() override;

private:
    void connect();
    void read();
    void dropIfLost();

    std::unique_ptr<pipewire::Library> library_;
    std::unique_ptr<pipewire::Daemon> daemon_; ///< null while there is none
    Timer attempts_;
    Subscription readable_;
};

} // namespace wegslot
