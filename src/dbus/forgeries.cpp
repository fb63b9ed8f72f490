#include "dbus/forgeries.h"

#include "dbus/bus.h"
#include "log/log.h"

#include <optional>
#include <string>

namespace wegslot::dbus {
namespace {

/// "uid 1000, pid 4711", as the bus answers.
std::string credentialsIn(const Message& answer) {
    std::optional<std::int64_t> user;
    std::optional<std::int64_t> process;
    answer.read().properties([&](std::string_view name, Reader& value) {
        if (name == "UnixUserID") user = value.integer();
        if (name == "ProcessID") process = value.integer();
    });
    const auto text = [](const std::optional<std::int64_t>& number) {
        return number ? std::to_string(*number) : "onbekend";
    };
    return "uid " + text(user) + ", pid " + text(process);
}

} // namespace

void Forgeries::refused(Bus& bus, const Message& signal, const std::string& source) {
    const TimePoint now = clock_.now();
    while (!told_.empty() && told_.front() <= now - std::chrono::hours{1})
        told_.pop_front();
    if (told_.size() == mostInAnHour) {
        ++untold_;
        return;
    }
    told_.push_back(now);
    const std::string sender(signal.sender());
    std::string line = "Vals signaal geweigerd: " + std::string(signal.member()) + " is niet van " +
                       source + " maar van " + sender;
    const std::string rest =
        untold_ == 0 ? "" : "; " + std::to_string(untold_) + " eerdere niet gemeld";
    untold_ = 0;
    if (questions_.size() == mostInAnHour) questions_.pop_front(); // answered, or never
    questions_.push_back(bus.call({.destination = "org.freedesktop.DBus",
                                   .path = "/org/freedesktop/DBus",
                                   .interface = "org.freedesktop.DBus",
                                   .member = "GetConnectionCredentials",
                                   .arguments = {sender}},
                                  [line = std::move(line), rest](const Message& answer) {
                                      Log::write(line + " (" + credentialsIn(answer) + ")" + rest);
                                  }));
}

} // namespace wegslot::dbus
