// python-dbusmock's logind with one session, on the bus of a test.
#pragma once

#include "tests/support/bus_loop.h"
#include "tests/support/program.h"

#include <memory>
#include <stdexcept>
#include <string>

namespace wegslot {

class MockedLogind {
public:
    static constexpr auto session = "/org/freedesktop/login1/session/auto";

    explicit MockedLogind(BusLoop& loop)
        : mock_(
              {.words = {"/usr/bin/python3", "-m", "dbusmock", "--system", "--template", "logind"},
               .environment = {{"DBUS_SYSTEM_BUS_ADDRESS", loop.daemon.address()}}}),
          bus_(loop.connect()),
          attached_(loop.attach(*bus_)) {
        bool there = false;
        const auto owner = bus_->followOwner(
            "org.freedesktop.login1",
            [&there](const std::optional<std::string>& name) { there = name.has_value(); });
        bool added = false;
        Subscription adding;
        const auto add = [&] {
            adding = bus_->call({.destination = "org.freedesktop.login1",
                                 .path = "/org/freedesktop/login1",
                                 .interface = "org.freedesktop.DBus.Mock",
                                 .member = "AddSession",
                                 .arguments = {std::string("auto"), std::string("seat0"),
                                               std::uint32_t{0}, std::string("user"), true}},
                                [&added](const dbus::Message& answer) { added = !answer.error(); });
        };
        if (!loop.runUntil([&there] { return there; }))
            throw std::runtime_error("dbusmock: " + mock_.output());
        add();
        if (!loop.runUntil([&added] { return added; }))
            throw std::runtime_error("dbusmock adds no session: " + mock_.output());
    }

    /// As a desktop does.
    void setHint(bool locked) {
        bus_->send({.destination = "org.freedesktop.login1",
                    .path = session,
                    .interface = "org.freedesktop.login1.Session",
                    .member = "SetLockedHint",
                    .arguments = {locked}});
    }

    /// Tells the desktop, as logind does when somebody asks for it ("Lock", "Unlock").
    void ask(const std::string& what) {
        bus_->send({.destination = "org.freedesktop.login1",
                    .path = session,
                    .interface = "org.freedesktop.login1.Session",
                    .member = what});
    }

    [[nodiscard]] Program& program() { return mock_; }

private:
    Program mock_;
    std::unique_ptr<dbus::Bus> bus_;
    Handle attached_;
};

} // namespace wegslot
