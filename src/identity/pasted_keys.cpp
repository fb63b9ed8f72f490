#include "identity/pasted_keys.h"

#include "log/log.h"

#include <algorithm>
#include <array>

namespace wegslot {
namespace {

bool isAmong(const std::vector<KeyDevice>& keys, const Uuid& id) {
    return std::ranges::find(keys, id, &KeyDevice::id) != keys.end();
}

} // namespace

KeyDevice pastedKey(const KnownIdentity& known) {
    return {.id = known.id(),
            .name = known.name,
            .model = std::nullopt,
            .isApple = false,
            .threshold = thresholdUnheard,
            .isPasted = true};
}

PastedKeys::PastedKeys(Settings& settings, Identities& identities, IdentityStore& store,
                       Scheduler& scheduler, WithoutKey orphans)
    : settings_(settings),
      identities_(identities),
      store_(store),
      scheduler_(scheduler) {
    const auto kept = store_.read();
    if (!kept) Log::say(kept.failure().message);
    std::vector<Uuid> gone;
    if (kept) {
        for (const KnownIdentity& known : *kept) {
            const bool isKey = isAmong(settings_.keys.get(), known.id());
            if (!isKey && orphans == WithoutKey::forgotten) {
                gone.push_back(known.id());
                continue;
            }
            identities_.put(known);
            kept_.insert(known.id());
        }
    }
    if (!gone.empty()) keep(gone, {});
    keys_ = settings_.keys.onChange([this](const auto& keys) { keysChanged(keys); });
    learning_ =
        identities_.lastLearned().onChange([this](const auto& learned) { this->learned(learned); });
}

std::optional<Failure> PastedKeys::reread() {
    const auto kept = store_.read();
    if (!kept) return kept.failure();
    for (const KnownIdentity& known : *kept) {
        if (!kept_.insert(known.id()).second) continue;
        identities_.put(known);
        settings_.insertKey(pastedKey(known), settings_.keys.get().size());
    }
    return std::nullopt;
}

void PastedKeys::keysChanged(const std::vector<KeyDevice>& keys) {
    std::vector<Uuid> gone;
    std::vector<Uuid> there;
    for (const Uuid& id : identities_.ids()) {
        const bool isKey = isAmong(keys, id);
        if (isKey && kept_.insert(id).second) there.push_back(id);
        if (!isKey && kept_.erase(id) > 0) gone.push_back(id);
    }
    if (gone.empty() && there.empty()) return;
    keep(gone, there);
    if (!gone.empty()) forgetting_ = scheduler_.after(grace, [this] { forgetOthers(); });
}

void PastedKeys::keep(std::span<const Uuid> gone, std::span<const Uuid> there) {
    KnownIdentities known = identities_.list(there);
    if (const auto failure = store_.change(gone, known)) Log::say(failure->message);
}

/// It may have been put back meanwhile; what could not be dropped from the store is tried again.
void PastedKeys::forgetOthers() {
    std::vector<Uuid> gone;
    for (const Uuid& id : identities_.ids())
        if (!kept_.contains(id)) gone.push_back(id);
    keep(gone, {});
    for (const Uuid& id : gone)
        identities_.remove(id);
}

/// The key stays what it is for its owner, under the id that the stack gives it from now on.
void PastedKeys::learned(const Identities::Learned& learned) {
    kept_.erase(learned.from);
    kept_.insert(learned.to);
    const std::array there{learned.to};
    keep({}, there);
    settings_.moveKey(learned.from, learned.to);
}

} // namespace wegslot
