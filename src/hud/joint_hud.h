// Several ways to warn, used as one: a panel, a sound, a notification. Any of them may report the
// cancel; which one did is not passed on.
#pragma once

#include "monitor/warning_hud.h"

#include <memory>
#include <utility>
#include <vector>

namespace wegslot {

class JointHud final : public WarningHUD {
public:
    using Parts = std::vector<std::unique_ptr<WarningHUD>>;

    explicit JointHud(Parts parts) : parts_(std::move(parts)) {}

    void show(TimePoint deadline, Seconds total, const Message& message,
              std::function<void()> onCancel) override {
        for (const auto& part : parts_)
            part->show(deadline, total, message, onCancel);
    }

    void hide() override {
        for (const auto& part : parts_)
            part->hide();
    }

private:
    Parts parts_;
};

} // namespace wegslot
