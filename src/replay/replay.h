// Runs the whole core on a trace in virtual time: the real application model over a radio, a
// screen and a user that the trace plays.
#pragma once

#include "base/result.h"
#include "base/virtual_time.h"
#include "core/app_model.h"
#include "replay/replay_output.h"
#include "stage/staged_central.h"
#include "stage/staged_platform.h"
#include "trace/reader.h"

#include <functional>
#include <istream>
#include <memory>
#include <optional>
#include <string_view>

namespace wegslot {

class Replay {
public:
    using Print = std::function<void(std::string_view line)>;

    /// `overrides` win over what the trace says of the same preferences, whenever it does.
    Replay(Print print, Preferences overrides);
    ~Replay();

    Replay(const Replay&) = delete;
    Replay& operator=(const Replay&) = delete;

    /// Replays `trace` to its end. A failure names the line and the fault; what happened before
    /// it has been printed.
    Result<bool> run(std::istream& trace);

private:
    class Core;
    struct Perform;

    void set(const trace::SettingsChange& change);
    void makeCore();

    Print print_;
    Preferences overrides_;
    TimePoint start_;
    MemoryStore store_;
    std::unique_ptr<Core> core_;
};

} // namespace wegslot
