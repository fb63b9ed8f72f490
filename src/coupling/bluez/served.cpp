#include "coupling/bluez/served.h"

#include <utility>

namespace wegslot::coupling {

dbus::Method served(IsDaemon isDaemon, std::string name, std::string arguments, std::string results,
                    Serve serve) {
    return {.name = std::move(name),
            .arguments = std::move(arguments),
            .results = std::move(results),
            .answerLater = [isDaemon = std::move(isDaemon), serve = std::move(serve)](
                               const dbus::Message& call, dbus::Answer answer) {
                if (isDaemon(call)) return serve(call, std::move(answer));
                answer.refuse("org.freedesktop.DBus.Error.AccessDenied", "only for bluetoothd");
            }};
}

dbus::Method servedWithNothing(IsDaemon isDaemon, std::string name) {
    return served(std::move(isDaemon), std::move(name), {}, {},
                  [](const dbus::Message&, dbus::Answer answer) { answer.give(); });
}

} // namespace wegslot::coupling
