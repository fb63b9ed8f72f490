// A logind that a test plays, with one session whose hint says whether the screen is locked.
#pragma once

#include "dbus/message.h"
#include "tests/support/look_alike.h"

#include <string>

#include <systemd/sd-bus.h>

namespace wegslot {

/// A logind with one session, which it finds in the way that it is told to.
class LookAlikeLogind {
public:
    static constexpr auto session = "/org/freedesktop/login1/session/c1";

    explicit LookAlikeLogind(BusLoop& loop) : service(loop, "org.freedesktop.login1") {
        const std::string manager = "org.freedesktop.login1.Manager.";
        service.on(manager + "GetSession", [this](LookAlike& logind, sd_bus_message* call) {
            const auto id = dbus::Reader(call).text();
            if (id != sessionId) return logind.fail(call, "org.freedesktop.login1.NoSuchSession");
            logind.reply(
                call, [](sd_bus_message* answer) { sd_bus_message_append(answer, "o", session); });
        });
        service.on(manager + "GetUser", [](LookAlike& logind, sd_bus_message* call) {
            logind.reply(call, [](sd_bus_message* answer) {
                sd_bus_message_append(answer, "o", "/org/freedesktop/login1/user/_1000");
            });
        });
        service.on(std::string(propertiesInterface) + ".Get",
                   [this](LookAlike& logind, sd_bus_message* call) { answerGet(logind, call); });
        service.on(std::string(sessionInterface) + ".Lock",
                   [this](LookAlike& logind, sd_bus_message* call) {
                       lockError.empty() ? logind.reply(call) : logind.fail(call, lockError);
                   });
    }

    void setHint(bool locked) {
        hint = locked;
        service.signal(session, propertiesInterface, "PropertiesChanged",
                       [locked](sd_bus_message* message) {
                           sd_bus_message_append(message, "sa{sv}as", sessionInterface, 1,
                                                 "LockedHint", "b", locked ? 1 : 0, 0);
                       });
    }
    void invalidateHint(bool locked) {
        hint = locked;
        service.signal(
            session, propertiesInterface, "PropertiesChanged", [](sd_bus_message* message) {
                sd_bus_message_append(message, "sa{sv}as", sessionInterface, 0, 1, "LockedHint");
            });
    }

    LookAlike service;
    std::string sessionId = "auto";
    std::string display = session; ///< of the user's record
    std::string lockError;
    bool hint = false;

private:
    static constexpr auto sessionInterface = "org.freedesktop.login1.Session";
    static constexpr auto propertiesInterface = "org.freedesktop.DBus.Properties";

    void answerGet(LookAlike& logind, sd_bus_message* call) {
        dbus::Reader arguments(call);
        static_cast<void>(arguments.text());
        const auto property = arguments.text();
        logind.reply(call, [&](sd_bus_message* answer) {
            if (property == "LockedHint") sd_bus_message_append(answer, "v", "b", hint ? 1 : 0);
            if (property == "Display")
                sd_bus_message_append(answer, "v", "(so)", "c1", display.c_str());
        });
    }
};

} // namespace wegslot
