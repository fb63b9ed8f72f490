// Something the user has to know, as a desktop notification that stays until they close it or it no
// longer holds. Where no notification can be shown, the log has it.
#pragma once

#include "dbus/connection.h"

#include <cstdint>
#include <optional>
#include <string>

namespace wegslot {

class Notice {
public:
    /// `session`: the bus of the user's session; must outlive this.
    Notice(dbus::Connection& session, std::string title, std::string text);
    Notice(const Notice&) = delete;
    Notice& operator=(const Notice&) = delete;
    ~Notice();

private:
    void busChanged(dbus::Bus* bus);
    void ownerChanged(const std::optional<std::string>& owner);
    void show();

    std::string title_;
    std::string text_;
    dbus::Bus* bus_ = nullptr;
    bool isAsking_ = false;
    bool isRefused_ = false;
    std::optional<std::uint32_t> id_; ///< once the desktop has said
    Subscription answer_;
    Subscription owner_;
    Subscription following_;
};

} // namespace wegslot
