// The menu of the status icon as desktops ask for it (com.canonical.dbusmenu): a few entries that
// never change, each with its action. The desktop draws it.
#pragma once

#include "dbus/object.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace wegslot {

class TrayMenu {
public:
    static constexpr auto path = "/MenuBar";

    struct Entry {
        std::string label;
        std::function<void()> action; ///< called once for each click
    };
    /// Told of each click before its action.
    using Chosen = std::function<void(const Entry& entry, const dbus::Message& call)>;

    TrayMenu(std::vector<Entry> entries, Chosen chosen)
        : entries_(std::move(entries)),
          chosen_(std::move(chosen)) {}
    TrayMenu(const TrayMenu&) = delete;
    TrayMenu& operator=(const TrayMenu&) = delete;

    /// Refers to this menu, and must be gone before it.
    [[nodiscard]] dbus::Interface interface() const;

private:
    using Id = std::int64_t; ///< 0 is the menu itself, the entries count from 1

    [[nodiscard]] bool has(Id id) const;
    [[nodiscard]] const Entry* entry(Id id) const;
    /// What a click on an entry does, to be called when all is answered; empty for the rest.
    [[nodiscard]] std::function<void()> actionOf(Id id, std::string_view what,
                                                 const dbus::Message& call) const;

    void getLayout(const dbus::Message& call, dbus::Writer& answer) const;
    void getGroupProperties(const dbus::Message& call, dbus::Writer& answer) const;
    void getProperty(const dbus::Message& call, dbus::Writer& answer) const;
    void event(const dbus::Message& call, dbus::Writer& answer) const;
    void eventGroup(const dbus::Message& call, dbus::Writer& answer) const;
    void aboutToShow(const dbus::Message& call, dbus::Writer& answer) const;
    void aboutToShowGroup(const dbus::Message& call, dbus::Writer& answer) const;

    void writeItem(dbus::Writer& writer, Id id, const std::vector<std::string>& wanted,
                   bool withChildren) const;
    void writeProperties(dbus::Writer& writer, Id id, const std::vector<std::string>& wanted) const;

    std::vector<Entry> entries_;
    Chosen chosen_;
};

} // namespace wegslot
