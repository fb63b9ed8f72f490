#include "ui/linux/tray_item.h"

#include "base/application_id.h"
#include "dbus/caller.h"
#include "log/log.h"

#include <utility>

namespace wegslot {
namespace {

constexpr auto title = "Wegslot";

using Write = std::function<void(dbus::Writer&)>;

Write text(std::string value) {
    return [value = std::move(value)](dbus::Writer& writer) { writer.text(value); };
}

void writeNoPictures(dbus::Writer& writer) {
    writer.array("(iiay)", [](dbus::Writer&) {});
}

TrayPoint pointIn(const dbus::Message& call) {
    auto reader = call.read();
    const auto x = static_cast<int>(reader.integer().value_or(0));
    const auto y = static_cast<int>(reader.integer().value_or(0));
    return {x, y};
}

} // namespace

TrayItem::TrayItem(dbus::Connection& sessionBus, Scheduler& scheduler, TrayActions actions,
                   TrayPainter painter)
    : scheduler_(scheduler),
      actions_(std::move(actions)),
      painter_(std::move(painter)),
      menu_(trayEntries(withToken(actions_)),
            [this](const TrayEntry& entry, const dbus::Message& call) {
                Log::write("\"" + entry.label.builtIn() +
                           "\" gekozen in het menu van het icoon, gevraagd door " +
                           dbus::callerOf(*bus_, call));
            }) {
    connection_ = sessionBus.bus().follow([this](dbus::Bus* bus) { busChanged(bus); });
}

void TrayItem::show(const TrayContent& content) {
    const TrayContent before = std::exchange(content_, content);
    if (before.symbol != content.symbol || before.color != content.color) {
        pictures_.clear();
        tell("NewIcon", {"IconPixmap"});
    }
    if (before.text != content.text) tell("NewToolTip", {"ToolTip"});
    menu_.show(content.isPaused, bus_);
}

/// What is chosen from the menu opens the panel by the token of that click, as a click on the icon
/// does.
TrayActions TrayItem::withToken(TrayActions actions) {
    actions.open = [this](const TrayClick& click) { open(click.at); };
    return actions;
}

void TrayItem::busChanged(dbus::Bus* bus) {
    registration_.reset();
    shownMenu_.reset();
    shownItem_.reset();
    bus_ = bus;
    if (bus == nullptr) return;
    // There before anybody is told of it.
    shownItem_ = dbus::exportObject(*bus, path, interface());
    shownMenu_ = dbus::exportObject(*bus, TrayMenu::path, menu_.interface());
    registration_.emplace(*bus, scheduler_, taken_);
}

dbus::Interface TrayItem::interface() {
    return {.name = interfaceName,
            .properties = properties(),
            .methods = methods(),
            .signals = {{"NewTitle"},
                        {"NewIcon"},
                        {"NewAttentionIcon"},
                        {"NewOverlayIcon"},
                        {"NewToolTip"},
                        {"NewStatus", "s"}}};
}

std::vector<dbus::Property> TrayItem::properties() {
    const auto writeMenu = [](dbus::Writer& writer) { writer.path(TrayMenu::path); };
    const auto writeToolTip = [this](dbus::Writer& writer) {
        writer.structure("sa(iiay)ss", [this](dbus::Writer& tip) {
            tip.text("");
            writeNoPictures(tip);
            tip.text(title);
            tip.text(content_.text);
        });
    };
    return {{"Category", "s", text("SystemServices")},
            {"Id", "s", text(applicationId)},
            {"Title", "s", text(title)},
            {"Status", "s", text("Active")},
            {"WindowId", "i", [](dbus::Writer& writer) { writer.int32(0); }},
            // Without a name there is one source for the picture, and hosts do not tint it.
            {"IconName", "s", text("")},
            {"IconThemePath", "s", text("")},
            {"IconPixmap", "a(iiay)", [this](dbus::Writer& writer) { writePictures(writer); },
             dbus::Telling::ofChanges},
            {"OverlayIconName", "s", text("")},
            {"OverlayIconPixmap", "a(iiay)", writeNoPictures},
            {"AttentionIconName", "s", text("")},
            {"AttentionIconPixmap", "a(iiay)", writeNoPictures},
            {"AttentionMovieName", "s", text("")},
            {"ToolTip", "(sa(iiay)ss)", writeToolTip, dbus::Telling::ofChanges},
            {"ItemIsMenu", "b", [](dbus::Writer& writer) { writer.boolean(false); }},
            {"Menu", "o", writeMenu}};
}

std::vector<dbus::Method> TrayItem::methods() {
    // A host that asks for the menu itself would show none; the panel has everything.
    const auto opens = [this](const dbus::Message& call, dbus::Writer&) { open(pointIn(call)); };
    const auto keepToken = [this](const dbus::Message& call, dbus::Writer&) {
        activationToken_ = call.read().text().value_or("");
    };
    return {{"Activate", "ii", "", opens},
            {"SecondaryActivate", "ii", "", opens},
            {"ContextMenu", "ii", "", opens},
            {"Scroll", "is", "", [](const dbus::Message&, dbus::Writer&) {}},
            {"ProvideXdgActivationToken", "s", "", keepToken}};
}

void TrayItem::writePictures(dbus::Writer& writer) {
    if (pictures_.empty())
        for (const int side : sides)
            pictures_.push_back(painter_(content_.symbol, content_.color, side));
    writer.array("(iiay)", [this](dbus::Writer& list) {
        for (const TrayPicture& picture : pictures_) {
            if (picture.argb.empty()) continue;
            list.structure("iiay", [&picture](dbus::Writer& fields) {
                fields.int32(picture.side);
                fields.int32(picture.side);
                fields.bytes(picture.argb);
            });
        }
    });
}

void TrayItem::tell(const char* signal, std::vector<std::string> properties) {
    if (bus_ == nullptr) return;
    dbus::emitSignal(*bus_, path, interfaceName, signal);
    dbus::emitChanged(*bus_, path, interfaceName, properties);
}

void TrayItem::open(std::optional<TrayPoint> at) {
    const auto act = actions_.open; // a copy: it may end this item
    act({.at = at, .activationToken = std::exchange(activationToken_, {})});
}

} // namespace wegslot
