// The warning as a sound: the one in the desktop's sound theme that asks for attention. Where there
// is no sound, nobody is told and nobody waits.
#pragma once

#include "hud/warning_hud.h"

#include <atomic>
#include <memory>

namespace wegslot {

class WarningSound final : public WarningHUD {
public:
    /// Plays it once, unless the one before is still under way. A sound server that hangs holds
    /// up nobody: a thread of its own waits for it, and may stay behind.
    void show(TimePoint deadline, Seconds total, const std::string& message,
              std::function<void()> onCancel) override;

    /// A sound that has begun ends by itself.
    void hide() override {}

private:
    std::shared_ptr<std::atomic<bool>> isPlaying_ = std::make_shared<std::atomic<bool>>(false);
};

} // namespace wegslot
