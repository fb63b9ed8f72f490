#include "coupling/bluez/answers.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace wegslot::coupling {
namespace {

struct Meaning {
    std::string_view error;
    Refusal refusal;
};

constexpr std::array meanings{
    Meaning{"org.bluez.Error.AuthenticationCanceled", Refusal::cancelled},
    Meaning{"org.bluez.Error.AuthenticationRejected", Refusal::cancelled},
    Meaning{"org.bluez.Error.AuthenticationTimeout", Refusal::noAnswer},
    Meaning{"org.freedesktop.DBus.Error.NoReply", Refusal::noAnswer},
    Meaning{"org.freedesktop.DBus.Error.Timeout", Refusal::noAnswer},
    Meaning{"org.bluez.Error.AlreadyExists", Refusal::otherBond},
};

} // namespace

Trouble troubleOf(const std::string& error, const std::string& text) {
    if (error == "org.freedesktop.DBus.Error.AccessDenied") return {Obstacle::denied};
    if (error == "org.bluez.Error.NotReady") return {Obstacle::off};
    // BlueZ has advertised for so many that there is no room left.
    if (error == "org.bluez.Error.NotPermitted") return {Obstacle::noRoom};
    return {Obstacle::failed, text.empty() ? error : error + ": " + text};
}

Trouble troubleOf(const dbus::Message& answer) {
    return troubleOf(answer.error().value_or(""), std::string(answer.errorText()));
}

std::optional<Refusal> refusalOf(const std::optional<std::string>& error) {
    // Already under way by itself: what comes of that shows without our call.
    if (!error || error == "org.bluez.Error.InProgress") return std::nullopt;
    const auto* const meaning = std::ranges::find(meanings, *error, &Meaning::error);
    return meaning == meanings.end() ? Refusal::failed : meaning->refusal;
}

} // namespace wegslot::coupling
