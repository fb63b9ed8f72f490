#include "recording/recorder.h"

#include "log/log.h"
#include "trace/settings_values.h"

#include <utility>

namespace wegslot {
namespace {

std::set<Uuid> idsOf(const std::vector<KeyDevice>& keys) {
    std::set<Uuid> ids;
    for (const KeyDevice& key : keys)
        ids.insert(key.id);
    return ids;
}

} // namespace

Recorder::Recorder(AppModel& model, const Monitor::Platform& platform,
                   std::function<Uuid()> freshId, std::optional<Request> atOnce)
    : model_(model),
      radio_(model.radio()),
      core_(model.scanner()),
      platform_(platform),
      freshId_(std::move(freshId)) {
    followSettings();
    subscriptions_.push_back(platform_.session.observe([this](SessionEvent event) {
        screenLocked_ = event == SessionEvent::locked;
        tell(trace::Session{event});
    }));
    subscriptions_.push_back(model_.scanner().discovery().onChange(
        [this](bool active) { tell(trace::Discovery{active}); }));
    subscriptions_.push_back(model_.monitor().asked().onChange(
        [this](const UserAction& asked) { tell(trace::Action{asked}); }));
    // A tick has just begun, and will ask as well: what it finds then has to be told before it.
    subscriptions_.push_back(model_.monitor().keyStates().onChange(
        [this](const KeyStates&) { tellActivity(beforeJudgement()); }));
    if (atOnce) begin(*std::move(atOnce), CoreIs::fresh);
}

Recorder::~Recorder() { stop(); }

std::optional<Failure> Recorder::record(Request request) {
    if (isRecording()) return Failure{message("er loopt al een opname")};
    begin(std::move(request), CoreIs::running);
    return std::nullopt;
}

void Recorder::stop() {
    tell(trace::End{});
    letGo();
}

void Recorder::letGo() {
    model_.setLinkBeforeScanner(nullptr);
    activityTimer_.reset();
    recording_.reset();
}

// --- What is told --------------------------------------------------------------------------------

void Recorder::followSettings() {
    const Settings& settings = model_.settings();
    // Before the list itself: the core asks at once which of the keys the stack knows.
    subscriptions_.push_back(settings.keys.onChange(
        [this](const std::vector<KeyDevice>& keys) { tellKnown(idsOf(keys)); }));
    settings.visit([this](const auto& setting) {
        subscriptions_.push_back(setting.onChange([this, &setting](const auto& value) {
            if (isRecording())
                tell(trace::SettingsChange{{{std::string(setting.name()), trace::valueOf(value)}}});
        }));
    });
}

void Recorder::begin(Request request, CoreIs core) {
    std::optional<Disguise> disguise;
    if (request.anonymous) disguise.emplace(freshId_);
    // How things stand is told of one instant, however long telling it takes: a replay starts with
    // it.
    const TimePoint now = platform_.clock.now();
    recording_.emplace(std::move(request.sink), std::move(disguise), platform_.activity,
                       platform_.clock, now);
    model_.setLinkBeforeScanner(this);
    activityTimer_ = platform_.scheduler.every(ActivityWatch::interval, [this] { tellActivity(); });
    tell(trace::Start{platform_.clock.wallClock()}, now);
    tell(trace::SettingsChange{trace::valuesOf(model_.settings())}, now);
    if (core == CoreIs::running) tellStanding(now);
    tellKnown(model_.scanner().watchedIDs(), now);
    tellActivity(now);
}

// How things stand in a core that has been running for a while.
void Recorder::tellStanding(TimePoint now) {
    const Scanner& scanner = model_.scanner();
    tell(trace::RadioState{radio_.state(), radio_.authorization()}, now);
    std::set<Uuid> devices = scanner.watchedIDs();
    tellKnown(devices, now);
    for (const SeenDevice& device : scanner.snapshot().get()) {
        devices.insert(device.id);
        if (isRecording() && !recording_->isKnown(device.id))
            tell(trace::Known{device.id, radio_.peripheralName(device.id)}, now);
    }
    for (const Uuid& id : devices)
        if (radio_.peripheralState(id) == PeripheralState::connected)
            tell(trace::Connected{id}, now);
    if (screenLocked_) tell(trace::Session{SessionEvent::locked}, now);
    if (scanner.discoveryActive()) tell(trace::Discovery{true}, now);
}

void Recorder::tellActivity(std::optional<TimePoint> at) {
    if (!isRecording()) return;
    for (trace::Event& event : recording_->activity.changes())
        tell(std::move(event), at);
}

/// For what the tick that is under way hears, so that a replay hears it before that tick too.
TimePoint Recorder::beforeJudgement() const {
    return model_.monitor().judgedAt() - std::chrono::milliseconds{1};
}

/// Those of `ids` that the stack can be asked for and that no line has told of yet.
void Recorder::tellKnown(const std::set<Uuid>& ids, std::optional<TimePoint> at) {
    if (!isRecording()) return;
    for (const Uuid& id : radio_.retrieve(ids))
        if (isRecording() && !recording_->isKnown(id))
            tell(trace::Known{id, radio_.peripheralName(id)}, at);
}

void Recorder::tell(trace::Event event, std::optional<TimePoint> at) {
    if (!isRecording()) return;
    if (!at) at = model_.scanner().isCatchingUp() ? beforeJudgement() : model_.monitor().heardAt();
    const auto failure = recording_->tell(std::move(event), *at);
    if (!failure) return;
    letGo();
    Log::write("Opname gestopt: " + failure->message.builtIn());
}

// --- The radio -----------------------------------------------------------------------------------
// Each report is told before the core handles it: what it brings down is in the trace by then.

void Recorder::didUpdateState() {
    // Before the state: once it is on the core asks which of its keys the stack knows.
    tellKnown(model_.scanner().watchedIDs());
    tell(trace::RadioState{radio_.state(), radio_.authorization()});
    core_.didUpdateState();
}

void Recorder::didDiscover(const Advertisement& advertisement) {
    trace::Heard event{.id = advertisement.id,
                       .rssi = advertisement.rssi,
                       .name = recording_->newName(advertisement.id, advertisement.peripheralName),
                       .localName = std::nullopt,
                       .manufacturerData = std::nullopt};
    if (advertisement.localName) event.localName.emplace(*advertisement.localName);
    if (const auto& data = advertisement.manufacturerData)
        event.manufacturerData.emplace(data->begin(), data->end());
    tell(std::move(event));
    core_.didDiscover(advertisement);
}

void Recorder::didConnect(const Uuid& id) {
    tell(trace::Connected{id});
    core_.didConnect(id);
}

void Recorder::didFailToConnect(const Uuid& id) {
    tell(trace::ConnectFailed{id, {}});
    core_.didFailToConnect(id);
}

void Recorder::didDisconnect(const Uuid& id, const std::optional<std::string>& reason) {
    tell(trace::Disconnected{id, reason});
    core_.didDisconnect(id, reason);
}

void Recorder::didReadRSSI(const Uuid& id, std::optional<int> rssi) {
    trace::RssiRead event{.id = id, .rssi = rssi, .error = std::nullopt};
    if (!rssi) event.error = "niet gelezen";
    tell(std::move(event));
    core_.didReadRSSI(id, rssi);
}

void Recorder::didDiscoverServices(const Uuid& id, std::span<const GattUuid> services) {
    tell(trace::Services{id, {services.begin(), services.end()}});
    core_.didDiscoverServices(id, services);
}

void Recorder::didDiscoverCharacteristics(const Uuid& id, GattUuid service,
                                          std::span<const GattUuid> characteristics) {
    tell(trace::Characteristics{id, {characteristics.begin(), characteristics.end()}});
    core_.didDiscoverCharacteristics(id, service, characteristics);
}

void Recorder::didUpdateValue(const Uuid& id, GattUuid characteristic,
                              const std::optional<std::string_view>& value) {
    trace::Value event{.id = id,
                       .characteristic = characteristic,
                       .value = std::nullopt,
                       .name = recording_->newName(id, radio_.peripheralName(id))};
    if (value) event.value.emplace(*value);
    tell(std::move(event));
    core_.didUpdateValue(id, characteristic, value);
}

void Recorder::didIdentify(const Uuid& from, const Uuid& to) {
    tell(trace::Identity{from, to});
    core_.didIdentify(from, to);
}

} // namespace wegslot
