// The sound and picture servers of a session, started by a test in a session of its own: a bus, a
// home and a runtime folder that nobody else sees. They can hang, die and come back.
#pragma once

#include "tests/support/private_bus.h"
#include "tests/support/program.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace wegslot {

/// Where the servers live. The environment of the test's own process points there, too, so that
/// there can be one only.
class MediaSession {
public:
    MediaSession();

    /// Runs a program to its end; what it printed if that was with status 0.
    [[nodiscard]] static std::optional<std::string> run(const std::vector<std::string>& words);

    [[nodiscard]] std::string home() const { return home_.path().string(); }

private:
    PrivateBus bus_;
    TemporaryFolder home_;
    TemporaryFolder runtime_;
};

/// A sound server with a source "mic" and a sink "nul", whose monitor is "nul.monitor".
class SoundServer {
public:
    SoundServer() = default;
    SoundServer(const SoundServer&) = delete;
    SoundServer& operator=(const SoundServer&) = delete;
    virtual ~SoundServer() = default;

    /// The programs that it needs.
    [[nodiscard]] virtual std::vector<std::string> needs() const = 0;

    /// Returns when it answers; false when it does not.
    [[nodiscard]] virtual bool start() = 0;

    /// Stops, goes on, or dies by a signal.
    void signal(int number) { server_->signal(number); }

protected:
    std::unique_ptr<Program> server_;
};

class PulseAudioServer final : public SoundServer {
public:
    [[nodiscard]] std::vector<std::string> needs() const override;
    [[nodiscard]] bool start() override;
};

/// PipeWire's stand-in for PulseAudio; the signals are for that, the daemon behind it stays.
class PipeWireSoundServer final : public SoundServer {
public:
    [[nodiscard]] std::vector<std::string> needs() const override;
    [[nodiscard]] bool start() override;

private:
    std::unique_ptr<Program> daemon_;
    std::unique_ptr<Program> sessionServer_;
};

/// The daemon alone, answering: what needs it gives up where it is not there. Null when it does
/// not.
[[nodiscard]] std::unique_ptr<Program> startPipeWire();

/// The first of the programs that is not installed.
[[nodiscard]] std::optional<std::string> firstMissing(const std::vector<std::string>& programs);

} // namespace wegslot
