// A bluetoothd that a test plays and that devices bond with: agents, a GATT application,
// advertisements, and devices that connect by themselves. What a program has registered goes when
// it leaves the bus, as with the real one.
#pragma once

#include "tests/support/look_alike_bluez.h"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace wegslot {

class VisitedBluez {
public:
    using Properties = LookAlikeBluez::Properties;
    using Texts = std::map<std::string, std::string>;

    static constexpr auto adapterAddress = "00:11:22:33:44:55";

    struct Agent {
        std::string owner;
        std::string path;
        std::string capability;
    };

    explicit VisitedBluez(BusLoop& loop);
    ~VisitedBluez();
    VisitedBluez(const VisitedBluez&) = delete;
    VisitedBluez& operator=(const VisitedBluez&) = delete;

    /// One that is on and can be a peripheral. Whether others may bond with it changes with the
    /// agents, as with the real one.
    void addAdapter(bool pairable = false);
    [[nodiscard]] bool isPairable() { return std::get<bool>(bluez.adapter().at("Pairable")); }

    /// A device that nobody knew connects; `further` may say otherwise.
    void comes(const std::string& address, Properties further = {});
    void goes(const std::string& address);

    /// Asks the default agent; what it answers, once it has: "ok", or an error's name.
    std::shared_ptr<std::string> ask(const std::string& member, std::vector<dbus::Argument> what);
    /// Likewise any object of the program that advertises.
    std::shared_ptr<std::string> call(const std::string& path, const std::string& interface,
                                      const std::string& member,
                                      std::vector<dbus::Argument> what = {});

    /// As a kill; and as a start, without any adapter.
    void vanish();
    void appear();

    /// Answers the oldest call of Pair that waits, with an error or well.
    void answerPair(const std::string& error = {});

    [[nodiscard]] long calls(const std::string& member) const {
        return bluez.service.calls(member);
    }

    /// The default one last.
    std::vector<Agent> agents;
    /// What is advertised, by the owner's name: each property in words.
    std::map<std::string, Texts> advertised;
    /// What applications have, by the owner's name: "interface path: UUID flags".
    std::map<std::string, std::set<std::string>> applications;
    std::vector<std::string> removed; ///< paths of devices, by RemoveDevice
    /// Errors to answer with, by member.
    std::map<std::string, std::string> errors;
    LookAlikeBluez bluez;

private:
    using Held = std::shared_ptr<sd_bus_message>;

    void on(const std::string& method, std::function<void(sd_bus_message* call)> answer);
    void registerAgent(sd_bus_message* call);
    void defaultAgent(sd_bus_message* call);
    void unregisterAgent(sd_bus_message* call);
    void registerApplication(sd_bus_message* call);
    void registerAdvertisement(sd_bus_message* call);
    void setProperty(sd_bus_message* call);
    void removeDevice(sd_bus_message* call);
    void watchOwners();
    void left(const std::string& owner);
    void agentsChanged();
    void roomChanged();

    std::vector<Held> pairs_;
    std::vector<Subscription> calls_;
    Subscription owners_;
};

} // namespace wegslot
