// A sway of the test's own, without hardware, and the environment that programs find it by.
#pragma once

#include "tests/support/program.h"

#include <map>
#include <string>

namespace wegslot {

class HeadlessSway {
public:
    /// Returns when it can be connected to; false from `isRunning` if it never could.
    HeadlessSway()
        : sway_({.words = {"sway", "--config", "/dev/null"},
                 .environment = {{"XDG_RUNTIME_DIR", folder_.path()},
                                 {"HOME", folder_.path()},
                                 {"WLR_BACKENDS", "headless"},
                                 {"WLR_LIBINPUT_NO_DEVICES", "1"},
                                 {"WLR_RENDERER", "pixman"},
                                 {"WAYLAND_DISPLAY", ""},
                                 {"DISPLAY", ""}},
                 .unprivileged = true}),
          running_(becomesTrue([this] { return folder_.has("wayland-1"); })) {}

    [[nodiscard]] bool isRunning() const { return running_; }

    /// Absolute, so that it needs no XDG_RUNTIME_DIR.
    [[nodiscard]] std::string display() const { return folder_.path() + "/wayland-1"; }

    [[nodiscard]] Program& program() { return sway_; }

private:
    RuntimeFolder folder_;
    Program sway_;
    bool running_;
};

} // namespace wegslot
