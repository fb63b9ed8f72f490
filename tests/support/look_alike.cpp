#include "tests/support/look_alike.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <stdexcept>

namespace wegslot {

// Lets the C library's bus be driven by the loop through the seam, and used raw beside it.
struct LookAlike::Presence {
    sd_bus* raw = nullptr;
    std::unique_ptr<dbus::Bus> bus;
    Handle attached;
};

LookAlike::LookAlike(BusLoop& loop, std::string name) : loop_(loop), name_(std::move(name)) {
    appear();
}

LookAlike::~LookAlike() = default;

void LookAlike::appear() {
    auto presence = std::make_unique<Presence>();
    sd_bus_new(&presence->raw);
    sd_bus_set_address(presence->raw, loop_.daemon.address().c_str());
    sd_bus_set_bus_client(presence->raw, 1);
    if (sd_bus_start(presence->raw) < 0) throw std::runtime_error("look-alike: no bus");
    presence->bus = std::make_unique<dbus::Bus>(presence->raw, loop_.forgeries);
    sd_bus_add_filter(
        presence->raw, nullptr,
        [](sd_bus_message* message, void* self, sd_bus_error*) {
            return received(message, self, nullptr);
        },
        this);
    if (sd_bus_request_name(presence->raw, name_.c_str(), 0) < 0)
        throw std::runtime_error("look-alike: name taken: " + name_);
    presence->attached = loop_.attach(*presence->bus);
    presence_ = std::move(presence);
}

dbus::Bus& LookAlike::bus() const { return *presence_->bus; }

void LookAlike::vanish() { presence_.reset(); }

int LookAlike::received(sd_bus_message* message, void* self, void*) {
    std::uint8_t type = 0;
    sd_bus_message_get_type(message, &type);
    if (type != SD_BUS_MESSAGE_METHOD_CALL) return 0;
    auto& service = *static_cast<LookAlike*>(self);
    const std::string member = sd_bus_message_get_member(message);
    const char* const interface = sd_bus_message_get_interface(message);
    service.calls_.push_back(member);
    const auto handler =
        service.handlers_.find(std::string(interface == nullptr ? "" : interface) + "." + member);
    if (handler == service.handlers_.end()) {
        service.fail(message, "org.freedesktop.DBus.Error.UnknownMethod");
    } else {
        handler->second(service, message);
    }
    return 1;
}

void LookAlike::reply(sd_bus_message* call, const Append& append) {
    sd_bus_message* message = nullptr;
    if (sd_bus_message_new_method_return(call, &message) < 0) return;
    if (append) append(message);
    sd_bus_send(presence_->raw, message, nullptr);
    sd_bus_message_unref(message);
}

void LookAlike::fail(sd_bus_message* call, const std::string& error) {
    sd_bus_reply_method_errorf(call, error.c_str(), "as told");
}

void LookAlike::signal(const std::string& path, const std::string& interface,
                       const std::string& member, const Append& append) {
    sd_bus_message* message = nullptr;
    if (sd_bus_message_new_signal(presence_->raw, &message, path.c_str(), interface.c_str(),
                                  member.c_str()) < 0)
        throw std::runtime_error("look-alike: no such signal");
    if (append) append(message);
    if (sd_bus_send(presence_->raw, message, nullptr) < 0)
        throw std::runtime_error("look-alike: signal not sent");
    sd_bus_message_unref(message);
}

long LookAlike::calls(const std::string& member) const {
    return std::ranges::count(calls_, member);
}

} // namespace wegslot
