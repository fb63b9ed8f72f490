// The lines a replay prints: one JSON object each, in a fixed order of fields, so that the same
// trace always gives the same bytes.
#pragma once

#include "base/virtual_time.h"
#include "log/log.h"
#include "model/key_device.h"
#include "monitor/key_state.h"
#include "monitor/phase.h"
#include "scanner/seen_device.h"
#include "stage/staged_platform.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace wegslot {

class ReplayOutput final : public LogDestination {
public:
    /// `print` gets each line with its line feed; `time` gives its stamp.
    ReplayOutput(std::function<void(std::string_view)> print, const VirtualTime& time);

    void write(std::string_view message) override;
    void phase(const Phase& phase);
    /// Prints only what differs from the states printed last.
    void keyStates(const KeyStates& states);
    void central(std::string_view operation, const Uuid* id);
    void warning(const Warning* shown);
    void lock();
    void snapshot(const std::vector<SeenDevice>& devices);
    void keys(const std::vector<KeyDevice>& keys);

private:
    void line(std::string_view rest);
    [[nodiscard]] std::string sinceStart(TimePoint instant) const;
    [[nodiscard]] std::string device(const SeenDevice& device) const;

    std::function<void(std::string_view)> print_;
    const VirtualTime& time_;
    const TimePoint start_;
    KeyStates printed_;
};

} // namespace wegslot
