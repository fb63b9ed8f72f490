// Who records, asked of the sound server by the PulseAudio protocol, which PipeWire speaks as well.
// Everything is asked anew for each answer: whether a stream is on a monitor and whose it is then
// fits the stream, in whatever order a server announces its changes. The library runs on a thread
// of its own, which is seen nowhere else.
#pragma once

#include "base/scheduler.h"
#include "platform/activity_sources.h"
#include "platform/linux/media/application_names.h"

#include <memory>
#include <string>
#include <utility>

namespace wegslot {

class PulseMicrophone final : public MicrophoneSource {
public:
    /// How often a server that is not there is looked for. It is never started by that.
    static constexpr Nanoseconds betweenAttempts = std::chrono::seconds{5};

    /// Both must outlive this. The server is found by the usual variables (PULSE_SERVER,
    /// XDG_RUNTIME_DIR); the connection stands some milliseconds later.
    PulseMicrophone(Scheduler& scheduler, const ApplicationNames& names);
    ~PulseMicrophone() override;

    [[nodiscard]] std::string name() const override { return "PulseAudio"; }
    [[nodiscard]] bool isThere() const override;

    /// Waits for `answerPatience` at most, and not at all while an earlier question is unanswered.
    [[nodiscard]] std::optional<Use> use() override;

private:
    class Server;

    const ApplicationNames& names_;
    std::pair<std::string, std::string> named_; ///< the identifier asked for last, and its name
    std::unique_ptr<Server> server_;
    Timer attempts_;
};

} // namespace wegslot
