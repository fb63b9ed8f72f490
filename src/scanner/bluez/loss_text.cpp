#include "scanner/bluez/loss_text.h"

#include "base/text.h"

#include <array>

namespace wegslot::bluez {
namespace {

constexpr auto timeout = "geen antwoord meer";
constexpr auto remote = "door het apparaat beëindigd";
constexpr auto local = "door deze computer beëindigd";
constexpr auto authentication = "beveiliging mislukt";

} // namespace

std::string lossText(std::string_view name) {
    constexpr std::string_view prefix = "org.bluez.Reason.";
    if (!name.starts_with(prefix)) return "onbekende reden";
    const std::string_view reason = name.substr(prefix.size());
    if (reason == "Timeout") return timeout;
    if (reason == "Remote") return remote;
    if (reason == "Local") return local;
    if (reason == "Authentication") return authentication;
    if (reason == "Suspend") return "computer ging slapen";
    return "onbekende reden";
}

std::string lossText(std::uint8_t code) {
    switch (code) {
    case 0x05: // authentication failure
    case 0x06: // PIN or key missing
    case 0x3D: // MIC failure
        return authentication;
    case 0x08: // connection timeout
    case 0x22: // link layer response timeout
        return timeout;
    case 0x13: // remote user terminated
    case 0x14: // remote device: low resources
        return remote;
    case 0x15: // remote device: power off
        return "apparaat ging uit";
    case 0x16: // terminated by local host
        return local;
    case 0x3E: // failed to be established
        return "kwam niet tot stand";
    default: // the codes are an open set
        break;
    }
    return "reden 0x" + hexadecimal(code, 2);
}

} // namespace wegslot::bluez
