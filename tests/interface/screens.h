// A screen with a program in full screen on it, and a person at its mouse and keyboard. For tests
// of windows that are to be seen above everything.
#pragma once

#include "tests/support/environment.h"
#include "tests/support/program.h"

#include <QApplication>
#include <QImage>
#include <QScreen>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace wegslot {

/// Waits as `becomesTrue` does, while the windows of this process live.
[[nodiscard]] inline bool happens(const std::function<bool()>& condition) {
    return becomesTrue([&condition] {
        QCoreApplication::processEvents();
        return condition();
    });
}

/// An X server without a screen, with or without a window manager.
class X11Screen {
public:
    explicit X11Screen(const std::string& windowManager)
        : server_({.words = {"Xvfb", "-displayfd", "1", "-noreset", "-nolisten", "tcp", "-screen",
                             "0", "1280x800x24"}}) {
        if (!becomesTrue([this] { return !displayOf(server_).empty(); })) return;
        display = displayOf(server_);
        if (windowManager.empty()) return;
        // On a bus, without which Xfce's ends from 4.20 on.
        manager_.emplace(Program::Start{.words = {"dbus-run-session", "--", windowManager},
                                        .environment = {{"DISPLAY", display},
                                                        {"WAYLAND_DISPLAY", ""},
                                                        {"HOME", home_.path().string()}}});
        isManaged = becomesTrue([this] {
            Program properties({.words = {"xprop", "-root", "_NET_SUPPORTING_WM_CHECK"},
                                .environment = {{"DISPLAY", display}}});
            static_cast<void>(properties.ended());
            return properties.output().find("window id") != std::string::npos;
        });
    }

    std::string display; ///< empty when there is none
    bool isManaged = false;

private:
    TemporaryFolder home_;
    Program server_;
    std::optional<Program> manager_;
};

/// Qt in this process on the screen that `variables` name.
class OnScreen {
public:
    explicit OnScreen(const std::map<std::string, std::string>& variables)
        : environment_(variables),
          application_(std::make_unique<QApplication>(argc_, static_cast<char**>(arguments_))) {}

    /// What is on the screen there, whosever window it is.
    [[nodiscard]] static QImage seen(const QRect& area) {
        return QGuiApplication::primaryScreen()
            ->grabWindow(0, area.x(), area.y(), area.width(), area.height())
            .toImage();
    }

    /// Has a person do this, in the words of xdotool.
    static bool does(std::vector<std::string> words) {
        words.insert(words.begin(), "xdotool");
        Program person({.words = std::move(words)});
        return happens([&person] { return !person.isRunning(); }) && person.ended() == 0;
    }
    static bool clicks(QPoint place) {
        return does(
            {"mousemove", std::to_string(place.x()), std::to_string(place.y()), "click", "1"});
    }
    static bool types(const std::string& key) { return does({"key", key}); }

private:
    Environment environment_;
    int argc_ = 1;
    char name_[5] = "test";
    char* arguments_[2] = {static_cast<char*>(name_), nullptr};
    std::unique_ptr<QApplication> application_;
};

/// The program in full screen, which had the keyboard first.
class FullScreenProgram {
public:
    explicit FullScreenProgram(const std::map<std::string, std::string>& variables = {})
        : program_({.words = {WEGSLOT_FULL_SCREEN_WINDOW}, .environment = variables}) {
        isShown = happens([this] { return hasKeyboard(); });
    }

    [[nodiscard]] bool hasKeyboard() const {
        const std::string said = program_.output();
        const auto focus = said.rfind("focus");
        const auto blur = said.rfind("blur");
        return focus != std::string::npos && (blur == std::string::npos || focus > blur);
    }
    [[nodiscard]] std::string output() const { return program_.output(); }
    [[nodiscard]] bool everLostKeyboard() const { return says("blur"); }
    [[nodiscard]] bool got(Qt::Key key) const { return says("key " + std::to_string(key)); }

    bool isShown = false;

private:
    [[nodiscard]] bool says(const std::string& words) const {
        return program_.output().find(words) != std::string::npos;
    }

    Program program_;
};

} // namespace wegslot
