#include "app/key_commands.h"

#include "base/text.h"
#include "control/control_status.h"
#include "control/control_text.h"
#include "scanner/device_names.h"

#include <algorithm>
#include <utility>

namespace wegslot {
namespace {

std::string row(const KeyDevice& key) {
    const std::string model = key.model ? DeviceNames::friendly(*key.model) : "-";
    return key.id.text() + "  " + padded(printable(key.name), 24) + "  " +
           padded(printable(model), 18) + "  " +
           translated("drempel %1 dBm", {decimal(key.threshold.value)});
}

bool isKey(const Settings& settings, const Uuid& id) {
    const auto& keys = settings.keys.get();
    return std::ranges::find(keys, id, &KeyDevice::id) != keys.end();
}

} // namespace

DeviceListing::DeviceListing(AppModel& model, Scheduler& scheduler, bool others, PrintLine print)
    : scanner_(model.scanner()),
      print_(std::move(print)) {
    scanner_.setIncludeOtherDevices(others);
    scanner_.setDiscoveryActive(true);
    timer_ = scheduler.every(std::chrono::seconds{1}, [this] { refresh(); });
}

void DeviceListing::refresh() {
    scanner_.refreshSnapshot();
    print_("");
    for (const std::string& line :
         control::nearbyLines(control::nearby(scanner_, scanner_.includeOtherDevices())))
        print_(line);
}

KeyAdder::KeyAdder(AppModel& model, Scheduler& scheduler, const Uuid& id, Keep keep, Done done)
    : model_(model),
      id_(id),
      keep_(std::move(keep)),
      done_(std::move(done)) {
    if (isKey(model.settings(), id)) {
        looking_ = scheduler.after(Nanoseconds{0}, [this] {
            finish(Outcome::alreadyAKey,
                   message("Dit apparaat is al een sleutel: %1", {id_.text()}));
        });
        return;
    }
    // Watched, so that its advertisements count whatever it is; passive, so that it is left alone.
    model.scanner().setPassiveIDs({id});
    model.scanner().setWatchedIDs({id});
    looking_ = scheduler.every(std::chrono::seconds{1}, [this] { look(); });
    patience_ = scheduler.after(patience, [this] {
        finish(Outcome::notHeard, message("Niet gehoord binnen 30 s: %1 (%2)",
                                          {id_.text(), model_.scanner().stateDescription()}));
    });
}

void KeyAdder::look() {
    Scanner& scanner = model_.scanner();
    scanner.refreshSnapshot();
    const auto& devices = scanner.snapshot().get();
    const auto device = std::ranges::find(devices, id_, &SeenDevice::id);
    if (device == devices.end() || !device->rssi) return;
    if (scanner.changesAddress(id_))
        return finish(
            Outcome::refused,
            message("Dit apparaat wisselt van adres. Koppel het eerst met deze computer."));
    model_.settings().addKey(*device);
    if (const auto failure = keep_()) return finish(Outcome::notKept, failure->message);
    const KeyDevice& key = model_.settings().keys.get().back();
    finish(Outcome::added, message("Sleutel toegevoegd: %1, drempel %2 dBm",
                                   {printable(key.name), decimal(key.threshold.value)}));
}

void KeyAdder::finish(Outcome outcome, const Message& message) {
    looking_.reset();
    patience_.reset();
    done_(outcome, message);
}

void printKeys(const Settings& settings, const PrintLine& print) {
    if (settings.keys.get().empty()) print(translated("Geen sleutels"));
    for (const KeyDevice& key : settings.keys.get())
        print(row(key));
}

Result<std::string> removeKey(Settings& settings, const Uuid& id, const Keep& keep) {
    if (!isKey(settings, id)) return Failure{message("Geen sleutel met id %1", {id.text()})};
    settings.removeKey(id);
    if (const auto failure = keep()) return *failure;
    return translated("Sleutel verwijderd: %1", {id.text()});
}

} // namespace wegslot
