// Every choice of the user, each written through to the preferences at once. One object of this
// kind lives as long as the application. What others change in the store counts from then on.
#pragma once

#include "base/observable.h"
#include "base/time.h"
#include "model/key_device.h"
#include "model/lock_rule.h"
#include "model/preferences_store.h"
#include "scanner/seen_device.h"

#include <functional>
#include <utility>
#include <vector>

namespace wegslot {

/// One choice: an observable whose assignments are written after they are stored.
template <typename T>
class Setting {
public:
    Setting(std::function<T()> read, std::function<void(const T&)> write)
        : read_(std::move(read)),
          value_(read_()),
          write_(std::move(write)) {}

    [[nodiscard]] const T& get() const { return value_.get(); }

    void set(T value) {
        value_.set(std::move(value));
        write_(value_.get());
    }

    /// Takes over what the store says by now, if that is something else.
    void reread() {
        if (T now = read_(); now != value_.get()) value_.set(std::move(now));
    }

    [[nodiscard]] Subscription onChange(typename Observable<T>::Listener listener) const {
        return value_.onChange(std::move(listener));
    }

    [[nodiscard]] Subscription follow(typename Observable<T>::Listener listener) const {
        return value_.follow(std::move(listener));
    }

private:
    std::function<T()> read_;
    Observable<T> value_;
    std::function<void(const T&)> write_;
};

class Settings {
public:
    /// Registers the defaults and loads every field. A key list that cannot be decoded loads
    /// as empty and stays in the store until the next change of the keys.
    explicit Settings(PreferencesStore& store);

    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;

    /// Adds `device` as a key, unless it is one. Its threshold starts 15 dB below the present
    /// signal (a body in between costs about that much), within -90 and -65 dBm.
    void addKey(const SeenDevice& device);

    /// Sets a key's threshold to `value` as a whole number; nothing for an unknown id.
    void setThreshold(Dbm value, const Uuid& id);

    /// Removes the key and writes the list, also when there was none.
    void removeKey(const Uuid& id);

private:
    void reread();

    PreferencesStore& store_;

public:
    Setting<bool> enabled;
    Setting<std::vector<KeyDevice>> keys;
    Setting<LockRule> rule;
    Setting<Seconds> awayDelay;   ///< weak for this long is away; any double
    Setting<Seconds> lostTimeout; ///< silent for longer is away; any double
    Setting<bool> warningEnabled;
    Setting<Seconds> warningSeconds; ///< length of the countdown; any double
    Setting<bool> pauseDuringMeetings;
    Setting<bool> pauseWhileActive;
    Setting<bool> showOtherDevices;

private:
    Subscription changesByOthers_;
};

} // namespace wegslot
