// What is kept beside the settings of the core and decides nothing in it, so that it is neither
// recorded nor replayed: what Wegslot notes for itself, and for how long it remembers.
#pragma once

#include "model/setting.h"

namespace wegslot {

class Remembered {
public:
    /// `store` must outlive it.
    explicit Remembered(PreferencesStore& store);

    Remembered(const Remembered&) = delete;
    Remembered& operator=(const Remembered&) = delete;

    /// Adds what is read where nothing was noted.
    static void addDefaults(Preferences& defaults);

private:
    SettingsList list_;

public:
    /// Starting at login has been offered, whatever came of it.
    Setting<bool> loginOffered{list_, "loginOffered", false};
    /// When Wegslot was switched off, in seconds since 1970 on the clock on the wall; 0 while it is
    /// on. Any double.
    Setting<Seconds> offSince{list_, "offSince", Seconds{0}};
    /// For how many days the history is kept, 0 to 30; 0 keeps none. Any double.
    Setting<double> historyDays{list_, "historyDays", 7};
    /// The keys' numbers in it.
    Setting<KeyRows> historyRows{list_, "historyRows", {}};
};

} // namespace wegslot
