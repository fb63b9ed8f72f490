#include "platform/locker_programs.h"

#include <algorithm>
#include <array>
#include <filesystem>

namespace wegslot {
namespace {

struct Locker {
    DisplayKind display;
    LockCommand command;
    /// Of the process that runs as long as the screen is locked.
    const char* process;
};

// In order of preference. Each stays for as long as it locks: i3lock leaves at once unless told
// not to fork, and xscreensaver-command only asks a daemon, whose helper then fills the screen.
const std::array<Locker, 8>& lockers() {
    static const std::array<Locker, 8> list{{
        {DisplayKind::wayland, {"swaylock"}, "swaylock"},
        {DisplayKind::wayland, {"gtklock"}, "gtklock"},
        {DisplayKind::wayland, {"hyprlock"}, "hyprlock"},
        {DisplayKind::wayland, {"waylock"}, "waylock"},
        {DisplayKind::x11, {"xsecurelock"}, "xsecurelock"},
        {DisplayKind::x11, {"i3lock", "--nofork"}, "i3lock"},
        {DisplayKind::x11, {"slock"}, "slock"},
        {DisplayKind::x11, {"xscreensaver-command", "-lock"}, "xscreensaver-gfx"},
    }};
    return list;
}

} // namespace

LockCommand installedLocker(const Processes& processes, DisplayKind display) {
    const auto found = std::ranges::find_if(lockers(), [&](const Locker& locker) {
        return locker.display == display && processes.isInstalled(locker.command.front());
    });
    return found == lockers().end() ? LockCommand{} : found->command;
}

std::vector<ProcessPattern> lockerPatterns(const LockCommand& own) {
    std::vector<ProcessPattern> patterns;
    for (const Locker& locker : lockers())
        patterns.push_back({.name = locker.process});
    // With its arguments: a shell or an interpreter is a locker only when it runs this command.
    if (!own.empty())
        patterns.push_back({.name = std::filesystem::path(own.front()).filename().string(),
                            .arguments = LockCommand(own.begin() + 1, own.end())});
    return patterns;
}

} // namespace wegslot
