// A GNOME Shell without hardware that can lock, on the bus of a test: with python-dbusmock's
// logind, and the little of a display manager and an accounts service that it looks for.
#pragma once

#include "tests/support/fork_rescue.h"
#include "tests/support/look_alike.h"
#include "tests/support/mocked_logind.h"
#include "tests/support/program.h"

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <systemd/sd-bus.h>

namespace wegslot {

class GnomeDesktop {
public:
    /// Why there can be none on this machine; empty when there can.
    [[nodiscard]] static std::string obstacle() {
        if (!isInstalled("gnome-shell")) return "gnome-shell is not installed";
        // GNOME takes this folder for the sign that there is a login manager.
        std::error_code error;
        std::filesystem::create_directories("/run/systemd/seats", error);
        return error ? "there is no /run/systemd/seats, nor may it be made" : "";
    }

    /// `options`: more of them for gnome-shell.
    explicit GnomeDesktop(BusLoop& loop, std::vector<std::string> options = {})
        : loop_(loop),
          options_(std::move(options)),
          logind(loop),
          displays_(loop, "org.gnome.DisplayManager"),
          accounts_(loop, "org.freedesktop.Accounts") {
        displays_.on("org.freedesktop.DBus.Properties.Get",
                     [](LookAlike& self, sd_bus_message* call) {
                         self.reply(call, [](sd_bus_message* answer) {
                             sd_bus_message_append(answer, "v", "s", "43.0"); // its Version
                         });
                     });
        for (const char* const method : {"FindUserByName", "FindUserById"})
            accounts_.on(std::string("org.freedesktop.Accounts.") + method,
                         [](LookAlike& self, sd_bus_message* call) {
                             self.reply(call, [](sd_bus_message* answer) {
                                 sd_bus_message_append(answer, "o",
                                                       "/org/freedesktop/Accounts/User0");
                             });
                         });
        accounts_.on(
            "org.freedesktop.Accounts.ListCachedUsers", [](LookAlike& self, sd_bus_message* call) {
                self.reply(call,
                           [](sd_bus_message* answer) { sd_bus_message_append(answer, "ao", 0); });
            });
    }

    /// Starts the shell; true when it could lock and says how long nobody touched anything.
    [[nodiscard]] bool start() {
        std::vector<std::string> words{"gnome-shell", "--headless", "--wayland",
                                       "--virtual-monitor", "800x600"};
        words.insert(words.end(), options_.begin(), options_.end());
        shell_.emplace(Program::Start{.words = std::move(words), .environment = variables()});
        rescue_.emplace(shell_->process());
        const auto bus = loop_.connect();
        const auto attached = loop_.attach(*bus);
        std::map<std::string, bool> there{{"org.gnome.Shell.ScreenShield", false},
                                          {"org.gnome.Mutter.IdleMonitor", false}};
        std::vector<Subscription> owners;
        owners.reserve(there.size());
        for (auto& [name, is] : there)
            owners.push_back(
                bus->followOwner(name, [&is = is](const auto& owner) { is = owner.has_value(); }));
        // It asks logind not to sleep before it has locked once it listens to logind, and obeys
        // only when it has started.
        return loop_.runUntil([&] {
            return there["org.gnome.Shell.ScreenShield"] && there["org.gnome.Mutter.IdleMonitor"] &&
                   says(logind.program(), "Inhibit \"sleep\"") &&
                   says(*shell_, "GNOME Shell started");
        });
    }

    /// By which programs find this desktop.
    [[nodiscard]] std::map<std::string, std::string> variables() const {
        return {{"DBUS_SYSTEM_BUS_ADDRESS", loop_.daemon.address()},
                {"DBUS_SESSION_BUS_ADDRESS", loop_.daemon.address()},
                {"XDG_RUNTIME_DIR", folder_.path().string()},
                {"HOME", folder_.path().string()},
                {"XDG_SESSION_ID", "auto"},
                {"WAYLAND_DISPLAY", ""},
                {"DISPLAY", ""}};
    }

    [[nodiscard]] Program& shell() { return *shell_; }

private:
    [[nodiscard]] static bool says(const Program& program, const char* words) {
        return program.output().find(words) != std::string::npos;
    }

    BusLoop& loop_;
    std::vector<std::string> options_;

public:
    MockedLogind logind;

private:
    LookAlike displays_;
    LookAlike accounts_;
    TemporaryFolder folder_;
    std::optional<Program> shell_;
    std::optional<ForkRescue> rescue_;
};

} // namespace wegslot
