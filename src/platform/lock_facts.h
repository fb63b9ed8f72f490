// Combines what several sources say about the screen (logind's hint, the screen savers, a locker
// program) into one fact, reported only when it changes. Pure: the sources are adapters.
#pragma once

#include <functional>
#include <optional>
#include <utility>

namespace wegslot {

/// Who can say that the screen is locked.
enum class LockWitness { hint, saver, locker };

class LockFacts {
public:
    /// `changed` gets each change of the combined fact, which starts as unlocked.
    explicit LockFacts(std::function<void(bool locked)> changed) : changed_(std::move(changed)) {}

    /// logind's LockedHint; nothing while it cannot be read.
    void setHint(std::optional<bool> locked) {
        hint_ = locked;
        // A desktop that has set the hint once keeps it right, and its screen saver may be
        // active without a lock.
        if (locked == true) hintDecides_ = true;
        combine();
    }

    /// The desktop is known to keep the hint right.
    void trustHint(bool trusted) {
        hintTrusted_ = trusted;
        combine();
    }

    /// A screen saver is active; nothing while there is none.
    void setSaver(std::optional<bool> active) {
        saver_ = active;
        combine();
    }

    /// A locker program holds the screen.
    void setLocker(bool runs) {
        locker_ = runs;
        combine();
    }

    /// What says that the screen is locked, the strongest first; nothing while it is not.
    [[nodiscard]] std::optional<LockWitness> witness() const {
        if (!locked_) return std::nullopt;
        if (hint_.value_or(false)) return LockWitness::hint;
        return saver_.value_or(false) ? LockWitness::saver : LockWitness::locker;
    }

private:
    void combine() {
        const bool hint = hint_.value_or(false);
        const bool saver = saver_.value_or(false);
        const bool hintAlone = hint_.has_value() && (hintDecides_ || hintTrusted_);
        const bool now = hintAlone ? hint : hint || saver || locker_;
        if (now != std::exchange(locked_, now)) changed_(now);
    }

    std::function<void(bool)> changed_;
    std::optional<bool> hint_;
    std::optional<bool> saver_;
    bool locker_ = false;
    bool hintDecides_ = false;
    bool hintTrusted_ = false;
    bool locked_ = false;
};

} // namespace wegslot
