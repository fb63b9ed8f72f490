#include "hud/linux/notice.h"

#include "hud/linux/notifications.h"

#include <utility>

namespace wegslot {
namespace {

/// Some desktops take the text for markup, others do not: signs of it are left out for both.
std::string withoutMarkup(std::string text) {
    for (char& sign : text)
        if (sign == '<' || sign == '>' || sign == '&') sign = '_';
    return text;
}

} // namespace

Notice::Notice(dbus::Connection& session, std::string title, std::string text)
    : title_(std::move(title)),
      text_(withoutMarkup(std::move(text))) {
    following_ = session.bus().follow([this](dbus::Bus* bus) { busChanged(bus); });
}

Notice::~Notice() {
    if (bus_ != nullptr && id_) bus_->send(notifications::close(*id_));
}

void Notice::busChanged(dbus::Bus* bus) {
    owner_ = {};
    answer_ = {};
    id_.reset();
    isAsking_ = false;
    isRefused_ = false;
    bus_ = bus;
    if (bus == nullptr) return;
    // At login who shows notifications may come after us, or come when the first one is asked for.
    owner_ =
        bus->followOwner(notifications::service,
                         [this](const std::optional<std::string>& owner) { ownerChanged(owner); });
}

void Notice::ownerChanged(const std::optional<std::string>& owner) {
    if (!owner) id_.reset();
    // Asking may start the one who shows them; where that failed once it is waited for.
    if (!id_ && !isAsking_ && (owner || !isRefused_)) show();
}

void Notice::show() {
    isAsking_ = true;
    answer_ = bus_->call(notifications::notify({.title = title_, .text = text_}),
                         [this](const dbus::Message& answer) {
                             isAsking_ = false;
                             isRefused_ = answer.error().has_value();
                             if (!isRefused_) id_ = notifications::idIn(answer.read());
                         });
}

} // namespace wegslot
