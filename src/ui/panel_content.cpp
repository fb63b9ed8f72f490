#include "ui/panel_content.h"

#include "base/text.h"
#include "base/translation.h"
#include "ui/panel_colors.h"
#include "ui/symbols.h"

#include <algorithm>
#include <unordered_map>

namespace wegslot {
namespace {

using namespace panel;

Header header(const PanelSources& sources) {
    const Phase& phase = sources.monitor.phase().get();
    return {.symbol = std::string(symbol(phase)),
            .symbolColor = is<phase::Present>(phase) ? brand::success : brand::orange,
            .name = "Wegslot",
            .nameColor = sources.scheme == Scheme::dark ? brand::cream : brand::navy,
            .dot = color(phase),
            .status = printable(text(phase, sources.clockTime).translated()),
            .enabled = {.choice = Choice::enabled,
                        .text = {},
                        .tooltip = translated("Wegslot aan of uit"),
                        .isOn = sources.settings.enabled.get()}};
}

KeyFacts factsOf(const KeyDevice& key, const PanelSources& sources, const Flags& flags) {
    KeyFacts facts{.key = key,
                   .rssi = std::nullopt,
                   .state = std::nullopt,
                   .isHeardOverConnection = sources.scanner.hearsOverConnection(key.id),
                   .changesAddress = sources.scanner.changesAddress(key.id),
                   .isUnheard = !sources.scanner.lastSeen(key.id)};
    const auto& devices = sources.scanner.snapshot().get();
    const auto device = std::ranges::find(devices, key.id, &SeenDevice::id);
    if (device != devices.end()) facts.rssi = device->rssi;
    const KeyStates& states = sources.monitor.keyStates().get();
    if (const auto state = states.find(key.id); state != states.end()) facts.state = state->second;
    if (flags.heldThreshold && flags.heldThreshold->id == key.id)
        facts.held = flags.heldThreshold->value;
    // Once it has moved on, what was said of it no longer holds.
    if (const auto& set = flags.justSet;
        set && set->id == key.id && set->threshold == key.threshold)
        facts.justSetBy = set->signal;
    return facts;
}

KeysSection keysSection(const PanelSources& sources, const Flags& flags) {
    const auto& keys = sources.settings.keys.get();
    KeysSection section{.title = translated("Jouw sleutels")};
    if (keys.empty())
        section.instruction =
            translated("Leg je iPhone of Apple Watch naast je Mac en kies hem hieronder.");
    for (const ListedKey& listed : listedKeys(keys, flags.removed))
        section.rows.push_back(listed.isRemoved
                                   ? KeyPlace(removedRow(*listed.key))
                                   : KeyPlace(keyRow(factsOf(*listed.key, sources, flags))));
    if (keys.size() >= 2)
        section.rule = {.label = translated("Locken als"),
                        .options = {{LockRule::allAway, translated("alle sleutels weg zijn")},
                                    {LockRule::anyAway, translated("één sleutel weg is")}},
                        .selected = sources.settings.rule.get()};
    return section;
}

std::optional<LoginOffer> loginOffer(LoginOffering offering) {
    switch (offering) {
    case LoginOffering::none:
        break;
    case LoginOffering::offered:
        return LoginOffer{
            .text = translated("Wegslot lockt alleen als het draait. Zal het voortaan starten "
                               "als je inlogt?"),
            .accept = Button{.symbol = {}, .text = translated("Start bij inloggen")},
            .decline = {.symbol = {}, .text = translated("Niet nu")}};
    case LoginOffering::failed:
        return LoginOffer{.text = translated("Dat lukte niet; het logboek zegt waarom."),
                          .accept = std::nullopt,
                          .decline = {.symbol = {}, .text = translated("Goed")}};
    }
    return std::nullopt;
}

NearbyGroup nearby(const PanelSources& sources, const Flags& flags) {
    std::set<Uuid> keys;
    for (const KeyDevice& key : sources.settings.keys.get())
        keys.insert(key.id);
    const Scanner& scanner = sources.scanner;
    return nearbyGroup(
        {.devices = scanner.snapshot().get(),
         .keys = std::move(keys),
         .now = sources.now,
         .changesAddress = [&scanner](const Uuid& id) { return scanner.changesAddress(id); },
         .showOthers = sources.settings.showOtherDevices.get(),
         .isOpen = flags.showNearby,
         .isNamelessOpen = flags.showNameless,
         .held = flags.heldPlaces});
}

Footer footer(const Monitor& monitor) {
    Footer footer{.lock = {.symbol = std::string(symbols::lock), .text = translated("Nu locken")},
                  .pause = PauseMenu{.text = translated("Pauzeer"),
                                     .entries = {{translated("15 minuten"), Seconds{900}},
                                                 {translated("1 uur"), Seconds{3600}},
                                                 {translated("4 uur"), Seconds{14400}}}},
                  .log = {.symbol = std::string(symbols::log),
                          .text = {},
                          .tooltip = translated("Open het logboek")},
                  .quit = {.symbol = {}, .text = translated("Stop")}};
    // A warning may begin while the user's own pause has not ended yet.
    if (monitor.snoozeIsManual().get() && is<phase::Snoozed>(monitor.phase().get()))
        footer.pause = Button{.symbol = {}, .text = translated("Hervat")};
    return footer;
}

} // namespace

double panelHeight(const std::optional<double>& visible) {
    constexpr double margin = 24;
    constexpr double withoutScreen = 776;
    return std::min(visible ? *visible - margin : withoutScreen, PanelContent::tallest);
}

PanelContent panelContent(const PanelSources& sources, const Flags& flags) {
    return {.ground = panelColors(sources.scheme).ground,
            .header = header(sources),
            .banner = updateBanner(sources.update),
            .keys = keysSection(sources, flags),
            .loginOffer = loginOffer(flags.loginOffering),
            .nearby = nearby(sources, flags),
            .settings = settingsGroup(sources.settings, flags.showSettings, flags.launchAtLogin,
                                      sources.update),
            .footer = footer(sources.monitor)};
}

} // namespace wegslot
