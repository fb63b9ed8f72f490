#include "app/identity_adder.h"

#include "control/control_text.h"

#include <algorithm>
#include <utility>

namespace wegslot {

IdentityAdder::IdentityAdder(AppModel& model, Identities& identities, IdentityStore& store,
                             Scheduler& scheduler, const KnownIdentity& known, const Keep& keep,
                             const PrintLine& print, Done done)
    : model_(model),
      keys_(model.settings(), identities, store, scheduler, PastedKeys::WithoutKey::kept),
      id_(known.id()),
      name_(known.name),
      done_(std::move(done)) {
    if (const auto failure = add(store, known, keep)) {
        looking_ = scheduler.after(Nanoseconds{0}, [this, failure] { finish(*failure); });
        return;
    }
    const auto& keys = model.settings().keys.get();
    const auto key = std::ranges::find(keys, id_, &KeyDevice::id);
    print(control::identityAddedText(key->name, key->threshold));
    model.scanner().setPassiveIDs({id_});
    model.scanner().setWatchedIDs({id_});
    looking_ = scheduler.every(std::chrono::seconds{1}, [this] { look(); });
    patience_ = scheduler.after(control::identityPatience,
                                [this] { finish(control::identityUnheardText(name_)); });
}

/// All of it or nothing.
std::optional<Failure> IdentityAdder::add(IdentityStore& store, const KnownIdentity& known,
                                          const Keep& keep) {
    if (auto failure = store.change({}, {&known, 1})) return failure;
    if (auto failure = keys_.reread()) return failure;
    auto failure = keep();
    if (failure) model_.settings().removeKey(id_); // and with it what is kept of it
    return failure;
}

void IdentityAdder::look() {
    Scanner& scanner = model_.scanner();
    scanner.refreshSnapshot();
    if (const auto rssi = scanner.smoothedRSSI(id_)) finish(control::identityHeardText(*rssi));
}

void IdentityAdder::finish(const Result<std::string>& outcome) {
    looking_.reset();
    patience_.reset();
    done_(outcome);
}

} // namespace wegslot
