#include "director.h"

namespace controller {

namespace {

constexpr const char* ok = "ok";

TimePoint now() { return std::chrono::steady_clock::now(); }

std::string error(const std::string& why) { return "error: " + why; }

std::string noSuchDevice(const std::string& name) { return error("no device is called " + name); }

std::string yesOrNo(bool value) { return value ? "yes" : "no"; }

} // namespace

Director::Director(Air& air, Controller& controller, VirtualPort& port)
    : air_(air),
      controller_(controller),
      port_(port) {}

std::string Director::carryOut(std::string_view line) {
    return std::visit([this](const auto& instruction) { return carryOut(instruction); },
                      parseInstruction(line));
}

std::string Director::carryOut(const PutDevice& instruction) {
    air_.put(instruction.name,
             Advertiser(instruction.advertisement, fromSeconds(instruction.interval), now()));
    return ok;
}

std::string Director::carryOut(const SetRssi& instruction) {
    Advertiser* device = air_.find(instruction.name);
    if (device == nullptr) return noSuchDevice(instruction.name);
    device->setRssi(instruction.rssi);
    return ok;
}

std::string Director::carryOut(const SetLoudness& instruction) {
    Advertiser* device = air_.find(instruction.name);
    if (device == nullptr) return noSuchDevice(instruction.name);
    switch (instruction.loudness) {
    case SetLoudness::Loudness::Silent:
        device->silence();
        break;
    case SetLoudness::Loudness::Loud:
        device->makeLoud(now());
        break;
    }
    return ok;
}

std::string Director::carryOut(const SetDuplicateFilter& instruction) {
    controller_.scan().setDuplicateFilter(instruction.filter);
    return ok;
}

std::string Director::carryOut(const StartFlood& instruction) {
    if (air_.flood() != nullptr && !air_.flood()->hasEnded()) return error("a flood is running");
    air_.start(Flood(instruction.plan, now()));
    return ok;
}

std::string Director::carryOut(const TellFloodResult&) {
    if (air_.flood() == nullptr) return error("there was no flood");
    if (!air_.flood()->hasEnded()) return error("the flood is running");
    return "ok " + air_.flood()->summary();
}

std::string Director::carryOut(const TellStatus&) {
    const Scan& scan = controller_.scan();
    return "ok plugged=" + yesOrNo(port_.isPlugged()) + " scanning=" + yesOrNo(scan.isOn()) +
           " active=" + yesOrNo(scan.isActive()) +
           " filter-duplicates=" + yesOrNo(scan.filtersDuplicates()) +
           " scans-started=" + std::to_string(scan.timesStarted());
}

std::string Director::carryOut(const Unplug&) {
    if (!port_.isPlugged()) return error("unplugged already");
    port_.unplug();
    controller_.scan().reset();
    return ok;
}

std::string Director::carryOut(const Plug&) {
    if (port_.isPlugged()) return error("plugged in already");
    const std::optional<std::string> failure = port_.plug();
    return failure ? error(*failure) : ok;
}

std::string Director::carryOut(const Quit&) {
    wantsToQuit_ = true;
    return ok;
}

std::string Director::carryOut(const Misunderstood& instruction) { return error(instruction.why); }

} // namespace controller
