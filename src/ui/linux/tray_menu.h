// The menu of the status icon as desktops ask for it (com.canonical.dbusmenu): a few entries, of
// which some are shown only while one pauses. The desktop draws it, and is told to read it anew.
#pragma once

#include "dbus/object.h"
#include "ui/tray_entries.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace wegslot {

class TrayMenu {
public:
    static constexpr auto path = "/MenuBar";
    static constexpr auto interfaceName = "com.canonical.dbusmenu";

    /// Told of each click before its action.
    using Chosen = std::function<void(const TrayEntry& entry, const dbus::Message& call)>;

    TrayMenu(std::vector<TrayEntry> entries, Chosen chosen)
        : entries_(std::move(entries)),
          chosen_(std::move(chosen)) {}
    TrayMenu(const TrayMenu&) = delete;
    TrayMenu& operator=(const TrayMenu&) = delete;

    /// Refers to this menu, and must be gone before it.
    [[nodiscard]] dbus::Interface interface() const;

    /// Takes over whether one pauses, and tells on `bus`, if there is one, when the menu has become
    /// another by that.
    void show(bool isPaused, dbus::Bus* bus);

private:
    /// 0 is the menu itself; the entries count from 1, shown or not, so that a click hits what was
    /// read, whatever the menu has become since.
    using Id = std::int64_t;

    [[nodiscard]] bool has(Id id) const;
    [[nodiscard]] const TrayEntry* entry(Id id) const;
    [[nodiscard]] bool isShown(Id id) const;
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

    std::vector<TrayEntry> entries_;
    Chosen chosen_;
    bool isPaused_ = false;
    std::uint32_t revision_ = 1; ///< of what is shown
};

} // namespace wegslot
