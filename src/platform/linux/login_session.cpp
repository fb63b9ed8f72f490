#include "platform/linux/login_session.h"

#include <cstdlib>
#include <utility>

#include <unistd.h>

namespace wegslot {
namespace {

constexpr auto service = "org.freedesktop.login1";
constexpr auto manager = "/org/freedesktop/login1";
constexpr auto managerInterface = "org.freedesktop.login1.Manager";

dbus::Call managerCall(const char* member, dbus::Argument argument) {
    return {.destination = service,
            .path = manager,
            .interface = managerInterface,
            .member = member,
            .arguments = {std::move(argument)}};
}

// The ways to ask for the own session, best first: the caller's, else the user's graphical one;
// the one that the environment names; the one that the user's record names.
std::optional<dbus::Call> wayToAsk(std::size_t attempt) {
    if (attempt == 0) return managerCall("GetSession", std::string("auto"));
    if (attempt == 1) {
        const char* const id = std::getenv("XDG_SESSION_ID");
        return managerCall("GetSession", std::string(id == nullptr ? "" : id));
    }
    if (attempt == 2) return managerCall("GetUser", static_cast<std::uint32_t>(getuid()));
    return std::nullopt;
}

} // namespace

LoginSession::LoginSession(dbus::Connection& systemBus) {
    connection_ = systemBus.bus().onChange([this](dbus::Bus* bus) { busChanged(bus); });
}

void LoginSession::busChanged(dbus::Bus* bus) {
    answer_.reset();
    signals_.clear();
    bus_ = bus;
    if (bus == nullptr) return found(std::nullopt);
    const auto again = [this](const dbus::Message&) { find(); };
    for (const char* const member : {"SessionNew", "SessionRemoved"})
        signals_.push_back(
            bus->onSignal(service, {.interface = managerInterface, .member = member}, again));
    signals_.push_back(bus->followOwner(service, [this](const std::optional<std::string>& owner) {
        if (owner) return find();
        answer_.reset();
        found(std::nullopt);
    }));
}

void LoginSession::find() { ask(0); }

void LoginSession::ask(std::size_t attempt) {
    const auto call = wayToAsk(attempt);
    if (!call) return found(std::nullopt);
    answer_ = bus_->call(*call, [this, attempt](const dbus::Message& answer) {
        const auto path = answer.read().text();
        if (answer.error() || !path) return ask(attempt + 1);
        const bool isUser = attempt == 2;
        if (!isUser) return found(std::string(*path));
        // The user's record names its graphical session in a property of id and path.
        answer_ = bus_->call(
            {.destination = service,
             .path = std::string(*path),
             .interface = "org.freedesktop.DBus.Properties",
             .member = "Get",
             .arguments = {std::string("org.freedesktop.login1.User"), std::string("Display")}},
            [this](const dbus::Message& display) {
                std::optional<std::string> session;
                display.read().variant(
                    [&session](dbus::Reader& value) { session = value.secondOfPair(); });
                found(session);
            });
    });
}

void LoginSession::found(std::optional<std::string> path) {
    if (path != path_.get()) path_.set(std::move(path));
}

} // namespace wegslot
