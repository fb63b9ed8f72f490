#include "replay/replay.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace wegslot {
namespace {

/// What the wall clock shows at the start of a trace that does not say.
constexpr TimePoint defaultStart = std::chrono::sys_days{std::chrono::year{2026} / 1 / 1};

Preferences overlaid(Preferences values, const Preferences& overrides, bool onlyPresent) {
    for (const auto& [name, value] : overrides)
        if (!onlyPresent || values.contains(name)) values.insert_or_assign(name, value);
    return values;
}

} // namespace

// The core and the world that the trace plays around it.
class Replay::Core {
public:
    Core(const Print& print, TimePoint start, PreferencesStore& store)
        : time(start),
          output(print, time),
          platform(time, time, [this] { output.lock(); }),
          model({store, central, platform.ports,
                 [this] {
                     return std::make_unique<StagedHud>(
                         [this](const Warning* shown) { output.warning(shown); });
                 }}),
          before_(Log::setDestination(&output)) {
        central.onCall(
            [this](std::string_view operation, const Uuid* id) { output.central(operation, id); });
        Monitor& monitor = model.monitor();
        phases_ = monitor.phase().onChange([this](const Phase& phase) { output.phase(phase); });
        states_ = monitor.keyStates().onChange(
            [this](const KeyStates& states) { output.keyStates(states); });
    }

    ~Core() { Log::setDestination(before_); }

    Core(const Core&) = delete;
    Core& operator=(const Core&) = delete;

    VirtualTime time;
    ReplayOutput output;
    StagedCentral central;
    StagedPlatform platform;
    AppModel model;

private:
    LogDestination* before_;
    Subscription phases_;
    Subscription states_;
};

// What each event does to the running core.
struct Replay::Perform {
    Core& core;
    const Preferences& overrides;

    void operator()(const trace::Start&) const {}

    void operator()(const trace::End&) const {}

    void operator()(const trace::SettingsChange& event) const {
        core.model.settings().assign(overlaid(event.value, overrides, true));
    }

    void operator()(const trace::RadioState& event) const {
        core.central.setState(event.state, event.authorization);
    }

    void operator()(const trace::Known& event) const { core.central.know(event.id, event.name); }

    void operator()(const trace::Heard& event) const {
        core.central.advertise({.id = event.id,
                                .rssi = event.rssi,
                                .peripheralName = event.name,
                                .manufacturerData = event.manufacturerData,
                                .localName = event.localName});
    }

    void operator()(const trace::Connected& event) const { core.central.connected(event.id); }

    void operator()(const trace::ConnectFailed& event) const {
        core.central.connectFailed(event.id);
    }

    void operator()(const trace::Disconnected& event) const {
        core.central.disconnected(event.id, event.error);
    }

    void operator()(const trace::RssiRead& event) const {
        core.central.rssiRead(event.id, event.rssi);
    }

    void operator()(const trace::Services& event) const {
        core.central.services(event.id, event.services);
    }

    void operator()(const trace::Characteristics& event) const {
        core.central.characteristics(event.id, ModelIdentifier::deviceInfoService,
                                     event.characteristics);
    }

    void operator()(const trace::Value& event) const {
        core.central.value(event.id, event.characteristic, event.value, event.name);
    }

    void operator()(const trace::Session& event) const { core.platform.session.tell(event.value); }

    void operator()(const trace::Input&) const { core.platform.activity.touch(); }

    void operator()(const trace::Camera& event) const {
        core.platform.activity.setCamera(event.value);
    }

    void operator()(const trace::Microphone& event) const {
        core.platform.activity.setMicrophone(event.value);
    }

    void operator()(const trace::AddKey& event) const {
        const auto& listed = core.model.scanner().snapshot().get();
        const auto device = std::ranges::find(listed, event.value, &SeenDevice::id);
        if (device != listed.end()) core.model.settings().addKey(*device);
    }

    void operator()(const trace::RemoveKey& event) const {
        core.model.settings().removeKey(event.value);
    }

    void operator()(const trace::SetThreshold& event) const {
        core.model.settings().setThreshold(event.value, event.id);
    }

    void operator()(const trace::Discovery& event) const {
        core.model.scanner().setDiscoveryActive(event.value);
    }

    void operator()(const trace::Action& event) const { core.model.monitor().ask(event.value); }

    void operator()(const trace::Show& event) const {
        switch (event.value) {
        case trace::Shown::snapshot:
            return core.output.snapshot(core.model.scanner().snapshot().get());
        case trace::Shown::keys:
            return core.output.keys(core.model.settings().keys.get());
        }
    }

    void operator()(const trace::Identity& event) const {
        core.central.identify(event.from, event.to);
    }
};

Replay::Replay(Print print, Preferences overrides)
    : print_(std::move(print)),
      overrides_(std::move(overrides)),
      start_(defaultStart),
      store_(overrides_) {}

Replay::~Replay() = default;

Result<bool> Replay::run(std::istream& trace) {
    TraceReader reader;
    std::string text;
    for (std::size_t number = 1; std::getline(trace, text); ++number) {
        const auto line = reader.read(text);
        if (!line)
            return Failure{"regel " + std::to_string(number) + ": " +
                           line.failure().message.builtIn()};
        if (reader.isSetUp()) {
            if (const auto* const start = std::get_if<trace::Start>(&line->event))
                start_ = start->value;
            if (const auto* const change = std::get_if<trace::SettingsChange>(&line->event))
                set(*change);
            continue;
        }
        makeCore();
        core_->time.advanceTo(later(start_, line->time));
        if (std::holds_alternative<trace::End>(line->event)) return true;
        std::visit(Perform{*core_, overrides_}, line->event);
    }
    makeCore();
    return true;
}

void Replay::set(const trace::SettingsChange& change) {
    for (const auto& [name, value] : overlaid(change.value, overrides_, false))
        store_.write(name, value);
}

void Replay::makeCore() {
    if (!core_) core_ = std::make_unique<Core>(print_, start_, store_);
}

} // namespace wegslot
