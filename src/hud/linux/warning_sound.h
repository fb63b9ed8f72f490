// The warning as a sound: the one in the desktop's sound theme that asks for attention. Where there
// is no sound, nobody is told and nobody waits.
#pragma once

#include "monitor/warning_hud.h"

#include <chrono>
#include <memory>

namespace wegslot {

class WarningSound final : public WarningHUD {
public:
    /// For a sound that is under way when this ends; then its thread is left behind.
    static constexpr std::chrono::seconds patience{1};

    WarningSound();
    WarningSound(const WarningSound&) = delete;
    WarningSound& operator=(const WarningSound&) = delete;

    /// Cuts the sound short and ends its thread. One that is stuck in the sound server is left
    /// behind, and touches nothing of ours.
    ~WarningSound() override;

    /// Plays it once, unless the one before is still under way. A sound server that hangs holds
    /// up nobody: a thread of its own waits for it.
    void show(TimePoint deadline, Seconds total, const Message& message,
              std::function<void()> onCancel) override;

    /// A sound that has begun ends by itself.
    void hide() override {}

private:
    struct Playing;

    /// Returns when the sound has ended or nobody wants it any more, or at once when there can be
    /// none.
    static void play(Playing& playing);

    std::shared_ptr<Playing> playing_;
};

} // namespace wegslot
