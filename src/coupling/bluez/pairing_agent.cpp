#include "coupling/bluez/pairing_agent.h"

#include <array>
#include <utility>

namespace wegslot::coupling {
namespace {

constexpr std::uint32_t largestCode = 999'999;

void reject(dbus::Answer& answer) { answer.refuse("org.bluez.Error.Rejected", "not wanted"); }

struct Question {
    const char* name;
    const char* arguments;
    const char* results;
};

// A device that wants any of these is not the one that was invited, or wants more than a bond: a
// PIN is classic Bluetooth's, a passkey would have to be typed, a service is not to be used.
constexpr std::array unwanted{
    Question{"RequestPinCode", "o", "s"},   Question{"DisplayPinCode", "os", ""},
    Question{"RequestPasskey", "o", "u"},   Question{"DisplayPasskey", "ouq", ""},
    Question{"AuthorizeService", "os", ""},
};

} // namespace

PairingAgent::PairingAgent(dbus::Bus& bus, const IsDaemon& isDaemon, Confirmation confirmation,
                           AgentListener& listener)
    : confirmation_(confirmation),
      listener_(listener),
      shown_(dbus::exportObject(bus, path, interface(isDaemon))) {}

std::string PairingAgent::capability() const {
    switch (confirmation_) {
    case Confirmation::code:
        return "DisplayYesNo";
    case Confirmation::without:
        break;
    }
    return "NoInputNoOutput";
}

dbus::Interface PairingAgent::interface(const IsDaemon& isDaemon) {
    dbus::Interface agent{.name = "org.bluez.Agent1"};
    const auto add = [&](const Question& question, Serve serve) {
        agent.methods.push_back(served(isDaemon, question.name, question.arguments,
                                       question.results, std::move(serve)));
    };
    for (const Question& question : unwanted)
        add(question, [](const dbus::Message&, dbus::Answer answer) { reject(answer); });
    add({"RequestConfirmation", "ou", ""}, [this](const dbus::Message& call, dbus::Answer answer) {
        confirm(call, std::move(answer));
    });
    add({"RequestAuthorization", "o", ""}, [this](const dbus::Message& call, dbus::Answer answer) {
        authorize(call, std::move(answer));
    });
    for (const char* const end : {"Cancel", "Release"})
        add({end, "", ""}, [this](const dbus::Message&, dbus::Answer answer) {
            answer.give();
            withdraw();
        });
    return agent;
}

void PairingAgent::confirm(const dbus::Message& call, dbus::Answer answer) {
    dbus::Reader reader = call.read();
    const std::string device(reader.text().value_or(""));
    const auto code = reader.integer();
    const bool isCode = code && *code >= 0 && *code <= largestCode;
    // Who was told that nobody here can compare a code does not ask for that.
    if (!listener_.mayBond(device) || !isCode || confirmation_ == Confirmation::without) {
        reject(answer);
        return listener_.turnedDown(device);
    }
    waiting_ = std::move(answer);
    listener_.codeAsked(static_cast<std::uint32_t>(*code));
}

void PairingAgent::authorize(const dbus::Message& call, dbus::Answer answer) {
    // Asked where the device can show nothing; nobody has a code then, and the device that was
    // invited by its owner at this moment is all that there is to go by.
    const std::string device(call.read().text().value_or(""));
    if (listener_.mayBond(device)) return answer.give();
    reject(answer);
    listener_.turnedDown(device);
}

void PairingAgent::answer(bool same) {
    auto waiting = std::exchange(waiting_, std::nullopt);
    if (!waiting) return;
    same ? waiting->give() : reject(*waiting);
}

void PairingAgent::withdraw() {
    if (!waiting_) return;
    answer(false);
    listener_.codeDropped();
}

} // namespace wegslot::coupling
