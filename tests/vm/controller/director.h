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
    std::string carryOut(const SwitchDevice& instruction);
    std::string carryOut(const FailConnections& instruction);
    std::string carryOut(const DropLink& instruction);
    std::string carryOut(const SetModel& instruction);
    std::string carryOut(const SayGarbage& instruction);
    std::string carryOut(const ChangeAddress& instruction);
    std::string carryOut(const SeeAdvertising& instruction);
    std::string carryOut(const Connect& instruction);
    std::string carryOut(const Pair& instruction);
    std::string carryOut(const Look& instruction);
    std::string carryOut(const AnswerQuestion& instruction);
    std::string carryOut(const TellCentral& instruction);
    std::string carryOut(const SetAdvertisingAbility& instruction);
    std::string carryOut(const SetDuplicateFilter& instruction);
    std::string carryOut(const StartFlood& instruction);
    std::string carryOut(const TellFloodResult& instruction);
    std::string carryOut(const TellStatus& instruction);
    std::string carryOut(const TellDevice& instruction);
    std::string carryOut(const ReportHardwareError& instruction);
    std::string carryOut(const Unplug& instruction);
    std::string carryOut(const Plug& instruction);
    std::string carryOut(const Quit& instruction);
    std::string carryOut(const Misunderstood& instruction);

    /// Does it to the device, or says that there is none of that name.
    template <typename Act>
    std::string with(const std::string& name, Act act);

    Air& air_;
    Controller& controller_;
    VirtualPort& port_;
    bool wantsToQuit_ = false;
};

} // namespace controller
