#include "ui/linux/tray_menu.h"

#include <algorithm>
#include <utility>

namespace wegslot {
namespace {

constexpr std::uint32_t protocolVersion = 3;

void writeIds(dbus::Writer& writer, const std::vector<std::int64_t>& ids) {
    writer.array("i", [&ids](dbus::Writer& list) {
        for (const auto id : ids)
            list.int32(static_cast<std::int32_t>(id));
    });
}

/// The one property of the menu or of an entry that is not what it is by default.
struct Named {
    const char* name;
    std::string text;
};

} // namespace

dbus::Interface TrayMenu::interface() const {
    const auto answering = [this](void (TrayMenu::*method)(const dbus::Message&, dbus::Writer&)
                                      const) {
        return [this, method](const dbus::Message& call, dbus::Writer& answer) {
            (this->*method)(call, answer);
        };
    };
    const auto text = [](const char* value) {
        return [value](dbus::Writer& writer) { writer.text(value); };
    };
    return {.name = interfaceName,
            .properties = {{"Version", "u", [](dbus::Writer& w) { w.uint32(protocolVersion); }},
                           {"Status", "s", text("normal")},
                           {"TextDirection", "s", text("ltr")},
                           {"IconThemePath", "as",
                            [](dbus::Writer& writer) { writer.array("s", [](dbus::Writer&) {}); }}},
            .methods = {{"GetLayout", "iias", "u(ia{sv}av)", answering(&TrayMenu::getLayout)},
                        {"GetGroupProperties", "aias", "a(ia{sv})",
                         answering(&TrayMenu::getGroupProperties)},
                        {"GetProperty", "is", "v", answering(&TrayMenu::getProperty)},
                        {"Event", "isvu", "", answering(&TrayMenu::event)},
                        {"EventGroup", "a(isvu)", "ai", answering(&TrayMenu::eventGroup)},
                        {"AboutToShow", "i", "b", answering(&TrayMenu::aboutToShow)},
                        {"AboutToShowGroup", "ai", "aiai", answering(&TrayMenu::aboutToShowGroup)}},
            .signals = {{"ItemsPropertiesUpdated", "a(ia{sv})a(ias)"},
                        {"LayoutUpdated", "ui"},
                        {"ItemActivationRequested", "iu"}}};
}

bool TrayMenu::has(Id id) const { return id >= 0 && id <= static_cast<Id>(entries_.size()); }

const TrayEntry* TrayMenu::entry(Id id) const {
    return id != 0 && has(id) ? &entries_[static_cast<std::size_t>(id - 1)] : nullptr;
}

bool TrayMenu::isShown(Id id) const {
    const TrayEntry* const found = entry(id);
    return found == nullptr || found->isShown(isPaused_);
}

void TrayMenu::show(bool isPaused, dbus::Bus* bus) {
    if (std::exchange(isPaused_, isPaused) == isPaused) return;
    ++revision_;
    if (bus == nullptr) return;
    dbus::emitSignal(*bus, path, interfaceName, "LayoutUpdated", [this](dbus::Writer& writer) {
        writer.uint32(revision_);
        writer.int32(0);
    });
}

void TrayMenu::getLayout(const dbus::Message& call, dbus::Writer& answer) const {
    auto reader = call.read();
    const Id parent = reader.integer().value_or(-1);
    const auto depth = reader.integer().value_or(0);
    const auto wanted = reader.texts();
    if (!has(parent)) return answer.refuse();
    answer.uint32(revision_);
    writeItem(answer, parent, wanted, depth != 0);
}

void TrayMenu::getGroupProperties(const dbus::Message& call, dbus::Writer& answer) const {
    auto reader = call.read();
    auto asked = reader.integers();
    const auto wanted = reader.texts();
    // None named: all of them.
    if (asked.empty())
        for (std::int32_t id = 0; has(id); ++id)
            if (isShown(id)) asked.push_back(id);
    answer.array("(ia{sv})", [&](dbus::Writer& list) {
        for (const auto id : asked) {
            if (!has(id)) continue;
            list.structure("ia{sv}", [&](dbus::Writer& item) {
                item.int32(id);
                writeProperties(item, id, wanted);
            });
        }
    });
}

void TrayMenu::getProperty(const dbus::Message& call, dbus::Writer& answer) const {
    auto reader = call.read();
    const Id id = reader.integer().value_or(-1);
    const auto name = reader.text().value_or("");
    const TrayEntry* const found = entry(id);
    if (found == nullptr) return answer.refuse();
    if (name == "label")
        return answer.variant(
            "s", [found](dbus::Writer& value) { value.text(found->label.translated()); });
    if (name == "enabled")
        return answer.variant("b", [](dbus::Writer& value) { value.boolean(true); });
    if (name == "visible")
        return answer.variant("b", [this, id](dbus::Writer& value) { value.boolean(isShown(id)); });
    answer.refuse();
}

std::function<void()> TrayMenu::actionOf(Id id, std::string_view what,
                                         const dbus::Message& call) const {
    const TrayEntry* const clicked = entry(id);
    if (what != "clicked" || clicked == nullptr) return {};
    chosen_(*clicked, call);
    return clicked->action; // a copy: it may end this menu
}

void TrayMenu::event(const dbus::Message& call, dbus::Writer& answer) const {
    auto reader = call.read();
    const Id id = reader.integer().value_or(-1);
    const auto what = reader.text().value_or("");
    if (!has(id)) return answer.refuse();
    if (const auto action = actionOf(id, what, call)) action();
}

void TrayMenu::eventGroup(const dbus::Message& call, dbus::Writer& answer) const {
    std::vector<Id> unknown;
    std::vector<std::function<void()>> actions;
    std::size_t events = 0;
    call.read().structures("isvu", [&](dbus::Reader& fields) {
        ++events;
        const Id id = fields.integer().value_or(-1);
        const auto what = fields.text().value_or("");
        if (!has(id)) return unknown.push_back(id);
        if (auto action = actionOf(id, what, call)) actions.push_back(std::move(action));
    });
    if (events > 0 && unknown.size() == events) return answer.refuse();
    writeIds(answer, unknown);
    for (const auto& action : actions)
        action();
}

void TrayMenu::aboutToShow(const dbus::Message& call, dbus::Writer& answer) const {
    if (!has(call.read().integer().value_or(-1))) return answer.refuse();
    answer.boolean(false); // what has changed was told when it did
}

void TrayMenu::aboutToShowGroup(const dbus::Message& call, dbus::Writer& answer) const {
    std::vector<Id> unknown;
    const auto asked = call.read().integers();
    for (const auto id : asked)
        if (!has(id)) unknown.push_back(id);
    if (!asked.empty() && unknown.size() == asked.size()) return answer.refuse();
    writeIds(answer, {});
    writeIds(answer, unknown);
}

void TrayMenu::writeItem(dbus::Writer& writer, Id id, const std::vector<std::string>& wanted,
                         bool withChildren) const {
    writer.structure("ia{sv}av", [&](dbus::Writer& item) {
        item.int32(static_cast<std::int32_t>(id));
        writeProperties(item, id, wanted);
        item.array("v", [&](dbus::Writer& children) {
            if (id != 0 || !withChildren) return;
            for (Id child = 1; has(child); ++child) {
                if (!isShown(child)) continue;
                children.variant("(ia{sv}av)", [&](dbus::Writer& content) {
                    writeItem(content, child, wanted, false);
                });
            }
        });
    });
}

void TrayMenu::writeProperties(dbus::Writer& writer, Id id,
                               const std::vector<std::string>& wanted) const {
    const TrayEntry* const found = entry(id);
    const Named named = found == nullptr ? Named{"children-display", "submenu"}
                                         : Named{"label", found->label.translated()};
    const bool isWanted = wanted.empty() || std::ranges::find(wanted, named.name) != wanted.end();
    writer.array("{sv}", [&](dbus::Writer& properties) {
        if (!isWanted) return;
        properties.entry("sv", [&named](dbus::Writer& property) {
            property.text(named.name);
            property.variant("s", [&named](dbus::Writer& value) { value.text(named.text); });
        });
    });
}

} // namespace wegslot
