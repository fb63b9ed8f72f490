#include "tests/integration/media_servers.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <iostream>
#include <utility>

namespace wegslot {
namespace {

bool soundAnswers() { return MediaSession::run({"pactl", "info"}).has_value(); }

/// Waits for `condition`; where it never holds, says what it was and what the servers said.
bool awaited(const std::string& what, std::initializer_list<Program*> servers,
             const std::function<bool()>& condition) {
    if (becomesTrue(condition)) return true;
    std::cerr << "in vain: " << what << "\n";
    for (Program* const server : servers)
        std::cerr << (server->isRunning() ? "runs: " : "ended: ") << server->output() << "\n";
    return false;
}

/// The server chooses by itself, but may have chosen before there was the right one; WirePlumber
/// 0.5 takes a sink's monitor for a source now and then. Tells it, until it has heard.
bool isDefault(const std::string& kind, const std::string& name) {
    if (MediaSession::run({"pactl", "get-default-" + kind}) == name + "\n") return true;
    static_cast<void>(MediaSession::run({"pactl", "set-default-" + kind, name}));
    return false;
}

} // namespace

MediaSession::MediaSession() {
    for (const char* const variable :
         {"DISPLAY", "WAYLAND_DISPLAY", "PULSE_SERVER", "PULSE_RUNTIME_PATH", "PULSE_COOKIE",
          "PIPEWIRE_REMOTE", "PIPEWIRE_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_STATE_HOME"})
        unsetenv(variable);
    setenv("HOME", home_.path().c_str(), 1);
    setenv("XDG_RUNTIME_DIR", runtime_.path().c_str(), 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", bus_.address().c_str(), 1);
    // The first client makes it where the server has not: a pipewire-pulse that looks just before
    // that and makes it just after gives up.
    const auto pulse = runtime_.path() / "pulse";
    std::filesystem::create_directory(pulse);
    std::filesystem::permissions(pulse, std::filesystem::perms::owner_all);
}

std::optional<std::string> MediaSession::run(const std::vector<std::string>& words) {
    Program program({.words = words});
    return program.ended() == 0 ? std::optional(program.output()) : std::nullopt;
}

std::vector<std::string> PulseAudioServer::needs() const { return {"pulseaudio", "pactl"}; }

bool PulseAudioServer::start() {
    server_.reset();
    server_ = std::make_unique<Program>(Program::Start{
        .words = {"pulseaudio", "-n", "-L", "module-native-protocol-unix", "-L",
                  "module-null-source source_name=mic", "-L", "module-null-sink sink_name=nul",
                  "--exit-idle-time=-1", "--disable-shm", "--daemonize=no"}});
    return awaited("pulseaudio answers", {server_.get()}, soundAnswers);
}

std::vector<std::string> PipeWireSoundServer::needs() const {
    return {"pipewire", "wireplumber", "pipewire-pulse", "pw-cli", "pw-record", "pactl"};
}

bool PipeWireSoundServer::start() {
    if (!daemon_) {
        daemon_ = startPipeWire();
        if (!daemon_) return false;
        sessionServer_ = std::make_unique<Program>(Program::Start{.words = {"wireplumber"}});
    }
    server_.reset();
    server_ = std::make_unique<Program>(Program::Start{.words = {"pipewire-pulse"}});
    const auto servers = {daemon_.get(), sessionServer_.get(), server_.get()};
    const bool made =
        awaited("pipewire-pulse answers", servers, soundAnswers) &&
        MediaSession::run({"pactl", "load-module", "module-null-sink",
                           "media.class=Audio/Source/Virtual", "sink_name=mic"}) &&
        MediaSession::run({"pactl", "load-module", "module-null-sink", "sink_name=nul"});
    // A stream that comes before the session's own server has seen them is put elsewhere for good.
    return made &&
           awaited("the default source", servers, [] { return isDefault("source", "mic"); }) &&
           awaited("the default sink", servers, [] { return isDefault("sink", "nul"); });
}

std::unique_ptr<Program> startPipeWire() {
    auto daemon = std::make_unique<Program>(Program::Start{.words = {"pipewire"}});
    const bool answers = awaited("pipewire answers", {daemon.get()}, [] {
        return MediaSession::run({"pw-cli", "info", "0"}).has_value();
    });
    return answers ? std::move(daemon) : nullptr;
}

std::optional<std::string> firstMissing(const std::vector<std::string>& programs) {
    const auto missing = std::ranges::find_if_not(programs, isInstalled);
    return missing == programs.end() ? std::nullopt : std::optional(*missing);
}

} // namespace wegslot
