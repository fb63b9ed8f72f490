// Carries out instructions and words the answers: "ok", "ok <what was asked>" or "error: <why>".
#pragma once

#include <string>
#include <string_view>

#include "air.h"
#include "controller.h"
#include "instruction.h"
#include "virtual_port.h"

namespace controller {

class Director {
public:
    Director(Air& air, Controller& controller, VirtualPort& port);

    /// The answer, without a line end.
    std::string carryOut(std::string_view line);

    bool wantsToQuit() const { return wantsToQuit_; }

private:
    std::string carryOut(const PutDevice& instruction);
    std::string carryOut(const SetRssi& instruction);
    std::string carryOut(const SetLoudness& instruction);
    std::string carryOut(const SetDuplicateFilter& instruction);
    std::string carryOut(const StartFlood& instruction);
    std::string carryOut(const TellFloodResult& instruction);
    std::string carryOut(const TellStatus& instruction);
    std::string carryOut(const Unplug& instruction);
    std::string carryOut(const Plug& instruction);
    std::string carryOut(const Quit& instruction);
    std::string carryOut(const Misunderstood& instruction);

    Air& air_;
    Controller& controller_;
    VirtualPort& port_;
    bool wantsToQuit_ = false;
};

} // namespace controller
