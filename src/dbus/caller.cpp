#include "dbus/caller.h"

#include "base/text.h"

#include <filesystem>
#include <fstream>
#include <optional>

namespace wegslot::dbus {
namespace {

std::string firstLineOf(const std::filesystem::path& file) {
    std::ifstream stream(file);
    std::string line;
    std::getline(stream, line);
    return line;
}

/// The control group of the unified hierarchy, which line 0:: names; else of the first.
std::string groupIn(const std::filesystem::path& process) {
    std::ifstream stream(process / "cgroup");
    std::string group;
    for (std::string line; std::getline(stream, line);) {
        const auto place = line.find(':', line.find(':') + 1);
        if (place == std::string::npos) continue;
        if (group.empty() || line.starts_with("0::")) group = line.substr(place + 1);
    }
    return group;
}

} // namespace

std::string callerOf(Bus& bus, const Message& call) {
    std::optional<std::int64_t> number;
    // Now, for who asked may be gone as soon as it is answered.
    bus.ask({.destination = "org.freedesktop.DBus",
             .path = "/org/freedesktop/DBus",
             .interface = "org.freedesktop.DBus",
             .member = "GetConnectionUnixProcessID",
             .arguments = {std::string(call.sender())},
             .timeout = callerPatience},
            [&number](const Message& answer) { number = answer.read().integer(); });
    if (!number) return "een onbekend programma";
    const auto process = std::filesystem::path("/proc") / std::to_string(*number);
    const std::string name = firstLineOf(process / "comm");
    std::error_code unreadable;
    std::string what = std::filesystem::read_symlink(process / "exe", unreadable).string();
    if (const std::string group = groupIn(process); !group.empty()) what += " in " + group;
    if (name.empty()) return "een onbekend programma";
    return printable(name + " (" + what + ")");
}

} // namespace wegslot::dbus
