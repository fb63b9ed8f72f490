#include "director.h"

#include "link.h"
#include "text.h"

namespace controller {

namespace {

constexpr const char* ok = "ok";

TimePoint currentTime() { return std::chrono::steady_clock::now(); }

std::string error(const std::string& why) { return "error: " + why; }

std::string notConnected(const std::string& name) { return error("not connected: " + name); }

std::string yesOrNo(bool value) { return value ? "yes" : "no"; }

void turn(Device& device, SwitchDevice::To to) {
    using To = SwitchDevice::To;
    switch (to) {
    case To::Silent:
        return device.advertiser().silence();
    case To::Loud:
        return device.advertiser().makeLoud(currentTime());
    case To::Connectable:
        return device.advertiser().setType(ReportType::Connectable);
    case To::NotConnectable:
        return device.advertiser().setType(ReportType::NotConnectable);
    case To::Mute:
        return device.setMute(true);
    case To::Unmute:
        return device.setMute(false);
    case To::Admit:
        return device.setAdmission(Admit{});
    case To::Refuse:
        return device.setAdmission(Ignore{});
    case To::Forget:
        return device.forgetBond();
    }
}

/// The names of the devices that are connected, with commas between them.
std::string namesOfLinked(const Air& air) {
    std::string names;
    for (const auto& [name, device] : air.devices()) {
        if (device->link() == nullptr) continue;
        names += (names.empty() ? "" : ",") + name;
    }
    return names;
}

std::string describe(const Device& device) {
    const Link* link = device.link();
    return "address=" + toText(device.address().shown()) +
           " advertising=" + yesOrNo(device.isAdvertising()) +
           " connected=" + yesOrNo(link != nullptr) +
           " encrypted=" + yesOrNo(link != nullptr && link->isEncrypted()) +
           " bonded=" + yesOrNo(device.isBonded()) +
           " connects=" + std::to_string(device.timesLinked()) +
           " requests=" + std::to_string(device.timesAsked()) +
           " pairing-requests=" + std::to_string(device.pairing().timesAsked());
}

std::string numbered(unsigned number) {
    constexpr std::size_t shown = 6;
    const std::string digits = std::to_string(number);
    return std::string(shown - std::min(shown, digits.size()), '0') + digits;
}

std::string describe(const std::optional<OwnersQuestion>& question) {
    if (!question) return "none";
    switch (question->kind) {
    case OwnersQuestion::Kind::Consent:
        return "consent";
    case OwnersQuestion::Kind::Compare:
        return numbered(question->digits);
    case OwnersQuestion::Kind::Type:
        return "type";
    }
    return "none";
}

std::string describe(const Central& central) {
    const AttributeClient& attributes = central.attributes();
    const InitiatedPairing& pairing = central.pairing();
    std::string services;
    for (const std::uint16_t service : attributes.services()) {
        if (!services.empty()) services += ',';
        services += toHex(Bytes{static_cast<std::uint8_t>(service >> 8U),
                                static_cast<std::uint8_t>(service & 0xFFU)});
    }
    const std::optional<Bytes>& location = attributes.sensorLocation();
    const std::string notRead = attributes.isRefused() ? "refused" : "unknown";
    return "services=" + services + " location=" + (location ? toHex(*location) : notRead) +
           " pairing=" + yesOrNo(pairing.isUnderWay()) +
           " paired=" + std::to_string(pairing.timesDone()) + " failure=" +
           (pairing.failure() ? toHex(Bytes{*pairing.failure()}) : std::string("none")) +
           " question=" + describe(pairing.question()) +
           " bond-refused=" + yesOrNo(central.wasBondRefused());
}

} // namespace

Director::Director(Air& air, Controller& controller, VirtualPort& port)
    : air_(air),
      controller_(controller),
      port_(port) {}

std::string Director::carryOut(std::string_view line) {
    return std::visit([this](const auto& instruction) { return carryOut(instruction); },
                      parseInstruction(line));
}

template <typename Act>
std::string Director::with(const std::string& name, Act act) {
    Device* device = air_.find(name);
    if (device == nullptr) return error("no device is called " + name);
    return act(*device);
}

std::string Director::carryOut(const PutDevice& instruction) {
    if (const Device* earlier = air_.find(instruction.name))
        controller_.drop(*earlier, static_cast<std::uint8_t>(Status::ConnectionTimeout));
    air_.put(instruction.name, instruction.description, currentTime());
    return ok;
}

std::string Director::carryOut(const SetRssi& instruction) {
    return with(instruction.name, [&](Device& device) {
        switch (instruction.of) {
        case SetRssi::Of::Advertisements:
            device.advertiser().setRssi(instruction.rssi);
            break;
        case SetRssi::Of::Link:
            device.setLinkRssi(instruction.rssi);
            break;
        }
        return ok;
    });
}

std::string Director::carryOut(const SwitchDevice& instruction) {
    return with(instruction.name, [&](Device& device) {
        turn(device, instruction.to);
        return ok;
    });
}

std::string Director::carryOut(const FailConnections& instruction) {
    return with(instruction.name, [&](Device& device) {
        device.setAdmission(instruction.failure);
        return ok;
    });
}

std::string Director::carryOut(const DropLink& instruction) {
    return with(instruction.name, [&](const Device& device) {
        if (device.link() == nullptr) return notConnected(instruction.name);
        controller_.drop(device, instruction.reason);
        return std::string(ok);
    });
}

std::string Director::carryOut(const SetModel& instruction) {
    return with(instruction.name, [&](Device& device) {
        device.setModel(instruction.model);
        return ok;
    });
}

std::string Director::carryOut(const SayGarbage& instruction) {
    return with(instruction.name, [&](Device& device) {
        return device.say(instruction.bytes) ? ok : notConnected(instruction.name);
    });
}

std::string Director::carryOut(const ChangeAddress& instruction) {
    return with(instruction.name, [&](Device& device) {
        if (!device.address().isPrivate())
            return error("no private addresses: " + instruction.name);
        device.address().change(currentTime());
        return ok + (" " + toText(device.address().shown()));
    });
}

std::string Director::carryOut(const SeeAdvertising&) {
    std::string seen;
    for (const auto& [handle, set] : controller_.advertising().sets()) {
        if (!set.isOn) continue;
        const Address address = controller_.addressOf(set, handle);
        const bool isPublic = address.type == AddressType::Public;
        seen += " address=" + toText(address) + " type=" + (isPublic ? "public" : "random") +
                " connectable=" + yesOrNo(set.isConnectable) + " data=" + toHex(set.data) +
                " response=" + (set.isScannable ? toHex(set.response) : "");
    }
    return seen.empty() ? "ok nothing" : ok + seen;
}

std::string Director::carryOut(const Connect& instruction) {
    return with(instruction.name, [&](Device& device) {
        if (device.link() != nullptr) return error("connected already: " + instruction.name);
        const std::optional<SetHandle> set = controller_.advertising().connectable();
        if (!set) return error("nobody to connect to");
        device.address().changeIfDue(currentTime());
        controller_.connectFrom(device.address().shown(), device, *set);
        device.central().begin(*controller_.linkOf(device));
        return std::string(ok);
    });
}

std::string Director::carryOut(const Pair& instruction) {
    return with(instruction.name, [&](Device& device) {
        if (!device.isCentral()) return notConnected(instruction.name);
        device.central().pair();
        return std::string(ok);
    });
}

std::string Director::carryOut(const Look& instruction) {
    return with(instruction.name, [&](Device& device) {
        if (!device.isCentral()) return notConnected(instruction.name);
        device.central().look();
        return std::string(ok);
    });
}

std::string Director::carryOut(const AnswerQuestion& instruction) {
    return with(instruction.name, [&](Device& device) {
        if (!device.central().answer(instruction.answer)) return error("nothing was asked");
        return std::string(ok);
    });
}

std::string Director::carryOut(const TellCentral& instruction) {
    return with(instruction.name,
                [](const Device& device) { return ok + (" " + describe(device.central())); });
}

std::string Director::carryOut(const SetAdvertisingAbility& instruction) {
    controller_.setAdvertisingAbility(instruction.ability);
    return ok;
}

std::string Director::carryOut(const SetDuplicateFilter& instruction) {
    controller_.scan().setDuplicateFilter(instruction.filter);
    return ok;
}

std::string Director::carryOut(const StartFlood& instruction) {
    if (air_.flood() != nullptr && !air_.flood()->hasEnded()) return error("a flood is running");
    air_.start(Flood(instruction.plan, currentTime()));
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
           " scans-started=" + std::to_string(scan.timesStarted()) +
           " connecting=" + yesOrNo(controller_.isConnecting()) +
           " connected=" + namesOfLinked(air_);
}

std::string Director::carryOut(const TellDevice& instruction) {
    return with(instruction.name,
                [](const Device& device) { return ok + (" " + describe(device)); });
}

std::string Director::carryOut(const ReportHardwareError& instruction) {
    controller_.reportHardwareError(instruction.code);
    return ok;
}

std::string Director::carryOut(const Unplug&) {
    if (!port_.isPlugged()) return error("unplugged already");
    port_.unplug();
    controller_.unplugged();
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
