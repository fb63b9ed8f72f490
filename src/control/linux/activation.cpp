#include "control/linux/activation.h"

#include <cstdint>
#include <string_view>
#include <utility>

namespace wegslot {
namespace {

constexpr auto tokenField = "activation-token";
constexpr auto olderTokenField = "desktop-startup-id"; ///< X11's, which some pass for both

void askBus(dbus::Bus& bus, const char* member, std::vector<dbus::Argument> arguments) {
    bus.send({.destination = "org.freedesktop.DBus",
              .path = "/org/freedesktop/DBus",
              .interface = "org.freedesktop.DBus",
              .member = member,
              .arguments = std::move(arguments)});
}

/// From what the starting side tells of its desktop.
std::string tokenIn(dbus::Reader& platformData) {
    std::string token;
    std::string older;
    platformData.properties([&](std::string_view field, dbus::Reader& value) {
        if (field == tokenField) token = value.text().value_or("");
        if (field == olderTokenField) older = value.text().value_or("");
    });
    return token.empty() ? older : token;
}

} // namespace

Activation::Activation(dbus::Connection& sessionBus, Activated activated)
    : activated_(std::move(activated)) {
    connection_ = sessionBus.bus().follow([this](dbus::Bus* bus) { busChanged(bus); });
}

Activation::~Activation() {
    if (bus_ != nullptr) askBus(*bus_, "ReleaseName", {std::string(name)});
}

void Activation::busChanged(dbus::Bus* bus) {
    shown_.reset();
    bus_ = bus;
    if (bus == nullptr) return;
    // There before anybody can find it by its name. Where another has that still, we are next.
    shown_ = dbus::exportObject(*bus, path, interface());
    constexpr std::uint32_t nothingSpecial = 0;
    askBus(*bus, "RequestName", {std::string(name), nothingSpecial});
}

dbus::Interface Activation::interface() const {
    const auto activate = [this](dbus::Reader& platformData) {
        const auto act = activated_; // a copy: it may end this
        act(tokenIn(platformData));
    };
    return {.name = interfaceName,
            .methods = {{"Activate", "a{sv}", "",
                         [activate](const dbus::Message& call, dbus::Writer&) {
                             auto reader = call.read();
                             activate(reader);
                         }},
                        {"Open", "asa{sv}", "",
                         [activate](const dbus::Message& call, dbus::Writer&) {
                             auto reader = call.read();
                             static_cast<void>(reader.texts()); // Wegslot opens no files
                             activate(reader);
                         }},
                        {"ActivateAction", "sava{sv}", "",
                         [](const dbus::Message&, dbus::Writer& answer) { answer.refuse(); }}}};
}

ActivationRequest::ActivationRequest(dbus::Connection& sessionBus, Scheduler& scheduler,
                                     std::string activationToken,
                                     std::function<void(bool taken)> done)
    : activationToken_(std::move(activationToken)),
      done_(std::move(done)) {
    patience_ = scheduler.after(patience, [this] { end(false); });
    connection_ = sessionBus.bus().follow([this](dbus::Bus* bus) { busChanged(bus); });
}

void ActivationRequest::busChanged(dbus::Bus* bus) {
    asking_.reset();
    owner_.reset();
    asked_.reset();
    bus_ = bus;
    if (bus == nullptr || !done_) return;
    // The first one may be only just starting: its name may be still to come.
    owner_ = bus->followOwner(
        Activation::name, [this](const std::optional<std::string>& owner) { ownerChanged(owner); });
}

void ActivationRequest::ownerChanged(const std::optional<std::string>& owner) {
    // One that came while its owner was being asked for is told of twice.
    if (owner == asked_) return;
    asked_ = owner;
    if (owner) ask(*owner);
}

void ActivationRequest::ask(const std::string& owner) {
    const dbus::Dictionary platformData{{tokenField, activationToken_},
                                        {olderTokenField, activationToken_}};
    asking_ = bus_->call({.destination = owner,
                          .path = Activation::path,
                          .interface = Activation::interfaceName,
                          .member = "Activate",
                          .arguments = {platformData}},
                         [this](const dbus::Message& answer) {
                             if (!answer.error()) end(true);
                         });
}

void ActivationRequest::end(bool taken) {
    owner_.reset(); // nobody else is to be asked
    const auto done = std::exchange(done_, nullptr);
    if (done) done(taken); // may end this
}

} // namespace wegslot
