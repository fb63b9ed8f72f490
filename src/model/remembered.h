// What Wegslot notes for itself beside the user's choices, and keeps where they are kept. Nothing
// of it is a choice or decides anything in the core, so it is neither recorded nor replayed.
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
};

} // namespace wegslot
