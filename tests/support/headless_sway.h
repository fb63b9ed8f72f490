// A real compositor without a screen. It takes its own name in its folder: "wayland-1".
#pragma once

#include "platform/linux/idle/wayland_connection.h"
#include "tests/support/program.h"

#include <fstream>
#include <string>

namespace wegslot {

class HeadlessSway {
public:
    /// `configuration`: what is not to be as sway has it.
    explicit HeadlessSway(const RuntimeFolder& folder,
                          const std::string& configuration = "xwayland disable\n")
        : program_(start(folder, configuration)) {
        const std::string socket = folder.path() + "/" + socketName;
        isListening =
            becomesTrue([&] {
                return WaylandConnection::open(socket) != nullptr || !program_.isRunning();
            }) &&
            program_.isRunning();
    }

    static constexpr auto socketName = "wayland-1";
    bool isListening = false;

    [[nodiscard]] Program& program() { return program_; }

private:
    static Program::Start start(const RuntimeFolder& folder, const std::string& configuration) {
        const std::string file = folder.path() + "/config";
        std::ofstream(file) << configuration;
        return {.words = {"sway", "-c", file},
                .environment = {{"XDG_RUNTIME_DIR", folder.path()},
                                {"HOME", folder.path()},
                                {"WAYLAND_DISPLAY", ""},
                                {"DISPLAY", ""},
                                {"WLR_BACKENDS", "headless"},
                                {"WLR_LIBINPUT_NO_DEVICES", "1"},
                                {"WLR_RENDERER", "pixman"}},
                .unprivileged = true}; // it refuses root
    }

    Program program_;
};

} // namespace wegslot
