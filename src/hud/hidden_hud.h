// A warning that nobody sees, for when there is no screen to put it on.
#pragma once

#include "monitor/warning_hud.h"

namespace wegslot {

class HiddenHud final : public WarningHUD {
public:
    void show(TimePoint, Seconds, const Message&, std::function<void()>) override {}
    void hide() override {}
};

} // namespace wegslot
