#include "ui/panel_model.h"

#include "base/text.h"
#include "log/log.h"
#include "ui/whole_number.h"

#include <algorithm>
#include <utility>

namespace wegslot {

PanelModel::PanelModel(Objects objects, Expand expand, std::function<void()> changed)
    : objects_(std::move(objects)),
      expand_(expand),
      changed_(std::move(changed)),
      flags_{.showNearby = expand == Expand::all,
             .showNameless = false,
             .showSettings = expand == Expand::all,
             .launchAtLogin = objects_.loginItem.isEnabled()} {
    objects_.settings.visit([this](const auto& setting) { redrawOn(setting); });
    redrawOn(objects_.scanner.state());
    redrawOn(objects_.scanner.snapshot());
    redrawOn(objects_.monitor.phase());
    redrawOn(objects_.monitor.keyStates());
    redrawOn(objects_.monitor.snoozeIsManual());
    redrawOn(objects_.updates.state);
    redrawOn(objects_.scheme);
}

template <typename Source>
void PanelModel::redrawOn(const Source& source) {
    subscriptions_.push_back(source.onChange([this](const auto&) { changed_(); }));
}

PanelContent PanelModel::content() {
    const panel::UpdateFacts update{.state = objects_.updates.state.get(),
                                    .currentVersion = objects_.updates.currentVersion,
                                    .isConfigured = objects_.updates.isConfigured};
    PanelContent content = panelContent({.settings = objects_.settings,
                                         .scanner = objects_.scanner,
                                         .monitor = objects_.monitor,
                                         .update = update,
                                         .now = objects_.clock.now(),
                                         .clockTime = objects_.clockTime,
                                         .scheme = objects_.scheme.get()},
                                        flags_);
    shown_ = placesOf(content.nearby);
    if (flags_.heldPlaces) flags_.heldPlaces = shown_;
    return content;
}

void PanelModel::appear() {
    if (expand_ == Expand::asNeeded) flags_.showNearby = objects_.settings.keys.get().empty();
    objects_.scanner.setDiscoveryActive(flags_.showNearby);
    flags_.launchAtLogin = objects_.loginItem.isEnabled();
    changed_();
}

void PanelModel::disappear() {
    objects_.scanner.setDiscoveryActive(false);
    // A panel that goes takes pointer and finger along without a word.
    flags_.heldPlaces.reset();
    flags_.heldThreshold.reset();
    flags_.loginOffering = panel::LoginOffering::none;
    flags_.justSet.reset();
    justSetEnds_.reset();
    flags_.removed.clear();
    forgetting_.clear();
}

void PanelModel::openNearby(bool open) {
    flags_.showNearby = open;
    // Devices are looked for only while somebody looks at the list.
    objects_.scanner.setDiscoveryActive(open);
    changed_();
}

void PanelModel::openNameless(bool open) {
    flags_.showNameless = open;
    changed_();
}

void PanelModel::openSettings(bool open) {
    flags_.showSettings = open;
    changed_();
}

void PanelModel::set(panel::Choice choice, bool on) {
    Settings& settings = objects_.settings;
    switch (choice) {
    case panel::Choice::enabled:
        return settings.enabled.set(on);
    case panel::Choice::showOtherDevices:
        return settings.showOtherDevices.set(on);
    case panel::Choice::warningEnabled:
        return settings.warningEnabled.set(on);
    case panel::Choice::pauseDuringMeetings:
        return settings.pauseDuringMeetings.set(on);
    case panel::Choice::pauseWhileActive:
        return settings.pauseWhileActive.set(on);
    case panel::Choice::launchAtLogin:
        return setLaunchAtLogin(on);
    }
}

void PanelModel::setLaunchAtLogin(bool on) {
    if (const auto failure = objects_.loginItem.setEnabled(on))
        Log::write("Start bij inloggen mislukt: " + printable(failure->message.builtIn()));
    flags_.launchAtLogin = objects_.loginItem.isEnabled(); // whatever became of it
    if (flags_.launchAtLogin) flags_.loginOffering = panel::LoginOffering::none;
    changed_();
}

void PanelModel::step(panel::Delay delay, panel::Step step) {
    auto& setting = panel::settingOf(objects_.settings, delay);
    setting.set(panel::stepped(setting.get(), panel::rangeOf(delay), step));
}

void PanelModel::enter(panel::Delay delay, std::string_view typed) {
    auto& setting = panel::settingOf(objects_.settings, delay);
    // Who looks at a value and goes does not round it, nor bring it into the range.
    if (typed == wholeNumber(setting.get().count())) return;
    if (const auto seconds = panel::typedSeconds(typed, panel::rangeOf(delay)))
        setting.set(*seconds);
}

void PanelModel::setRule(LockRule rule) { objects_.settings.rule.set(rule); }

void PanelModel::choose(const Uuid& id) {
    const SeenDevice* const device = find(id);
    if (device == nullptr || objects_.scanner.changesAddress(id)) return;
    const bool isFirst = objects_.settings.keys.get().empty();
    objects_.settings.addKey(*device);
    if (isFirst) offerLogin();
}

/// Without it Wegslot guards until the next login and no further, and the box for it is folded
/// away.
void PanelModel::offerLogin() {
    Setting<bool>& wasOffered = objects_.remembered.loginOffered;
    if (wasOffered.get() || objects_.loginItem.isEnabled()) return;
    wasOffered.set(true);
    flags_.loginOffering = panel::LoginOffering::offered;
    changed_();
}

void PanelModel::acceptLogin() {
    flags_.loginOffering = panel::LoginOffering::failed; // unless it comes about
    setLaunchAtLogin(true);
}

void PanelModel::declineLogin() {
    flags_.loginOffering = panel::LoginOffering::none;
    changed_();
}

void PanelModel::removeKey(const Uuid& id) {
    const auto& keys = objects_.settings.keys.get();
    const auto key = std::ranges::find(keys, id, &KeyDevice::id);
    if (key != keys.end()) {
        auto removed = removedFrom(panel::listedKeys(keys, flags_.removed), *key);
        forgetRemoved(id);
        flags_.removed.push_back(std::move(removed));
        forgetting_[id] = objects_.scheduler.after(panel::putBackTime, [this, id] {
            forgetRemoved(id);
            changed_();
        });
    }
    objects_.settings.removeKey(id);
}

void PanelModel::putBack(const Uuid& id) {
    const auto found = std::ranges::find(flags_.removed, id,
                                         [](const panel::RemovedKey& gone) { return gone.key.id; });
    if (found == flags_.removed.end()) return;
    const panel::RemovedKey removed = *found;
    forgetRemoved(id);
    Settings& settings = objects_.settings;
    settings.insertKey(removed.key, placeAmong(settings.keys.get(), removed));
}

void PanelModel::forgetRemoved(const Uuid& id) {
    std::erase_if(flags_.removed,
                  [&id](const panel::RemovedKey& gone) { return gone.key.id == id; });
    forgetting_.erase(id);
}

void PanelModel::moveThreshold(const Uuid& id, Dbm value) {
    flags_.heldThreshold = {.id = id, .value = value};
    objects_.settings.setThreshold(value, id);
}

void PanelModel::releaseThreshold() {
    flags_.heldThreshold.reset();
    changed_();
}

void PanelModel::setFromHere(const Uuid& id) {
    const SeenDevice* const device = find(id);
    if (device == nullptr || !device->rssi) return;
    const Dbm signal = *device->rssi;
    Settings& settings = objects_.settings;
    settings.setThreshold(thresholdFromHere(signal), id);
    const auto key = std::ranges::find(settings.keys.get(), id, &KeyDevice::id);
    if (key == settings.keys.get().end()) return;
    flags_.justSet = {.id = id, .signal = signal, .threshold = key->threshold};
    justSetEnds_ = objects_.scheduler.after(panel::justSetTime, [this] {
        flags_.justSet.reset();
        changed_();
    });
    changed_();
}

void PanelModel::holdLists() { flags_.heldPlaces = shown_; }

void PanelModel::releaseLists() {
    flags_.heldPlaces.reset();
    changed_();
}

const SeenDevice* PanelModel::find(const Uuid& id) const {
    const auto& devices = objects_.scanner.snapshot().get();
    const auto device = std::ranges::find(devices, id, &SeenDevice::id);
    return device == devices.end() ? nullptr : &*device;
}

} // namespace wegslot
