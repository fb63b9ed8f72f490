// Every choice of the user, each written through to the preferences at once. One object of this
// kind lives as long as the application. What others change in the store counts from then on.
#pragma once

#include "model/setting.h"
#include "scanner/seen_device.h"

#include <cstddef>
#include <utility>
#include <variant>
#include <vector>

namespace wegslot {

class Settings {
public:
    /// Registers the defaults and loads every field. A key list that cannot be decoded loads
    /// as empty and stays in the store until the next change of the keys.
    explicit Settings(PreferencesStore& store);

    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;

    /// All at their defaults, and kept nowhere: for who asks which settings there are.
    [[nodiscard]] static const Settings& specimen();

    /// Calls `look` with each setting, in the order in which they stand below. A change of several
    /// assigns them in this order too.
    template <typename Look>
    void visit(const Look& look) {
        for (const AnySetting& any : list_.all)
            std::visit([&look](auto* setting) { look(*setting); }, any);
    }
    template <typename Look>
    void visit(const Look& look) const {
        for (const AnySetting& any : list_.all)
            std::visit([&look](const auto* setting) { look(*setting); }, any);
    }

    /// Assigns each value that is named, in the order in which the settings stand below.
    void assign(const Preferences& values);

    /// Adds `device` as a key, unless it is one. Its threshold starts 15 dB below the present
    /// signal (a body in between costs about that much), within -90 and -65 dBm.
    void addKey(const SeenDevice& device);

    /// Adds a key as it was once, behind so many others; nothing if it is one.
    void insertKey(const KeyDevice& key, std::size_t place);

    /// The key `from` turned out to be the device `to`: it has this id from now on. Where that is a
    /// key too, the two are one.
    void moveKey(const Uuid& from, const Uuid& to);

    /// Sets a key's threshold to `value` as a whole number; nothing for an unknown id.
    void setThreshold(Dbm value, const Uuid& id);

    /// Removes the key and writes the list, also when there was none.
    void removeKey(const Uuid& id);

private:
    void reread();

    SettingsList list_;

public:
    // Each is named here and nowhere else: what stores, records, replays or shows them all, walks.
    Setting<bool> enabled{list_, "enabled", true};
    Setting<std::vector<KeyDevice>> keys{list_, "keys", {}};
    Setting<LockRule> rule{list_, "rule", LockRule::allAway};
    /// Weak for this long is away; any double.
    Setting<Seconds> awayDelay{list_, "awayDelay", Seconds{5}};
    /// Silent for longer is away; any double.
    Setting<Seconds> lostTimeout{list_, "lostTimeout", Seconds{15}};
    Setting<bool> warningEnabled{list_, "warningEnabled", true};
    /// Length of the countdown; any double.
    Setting<Seconds> warningSeconds{list_, "warningSeconds", Seconds{5}};
    Setting<bool> pauseDuringMeetings{list_, "pauseDuringMeetings", true};
    Setting<bool> pauseWhileActive{list_, "pauseWhileActive", true};
    Setting<bool> showOtherDevices{list_, "showOtherDevices", false};

private:
    Subscription changesByOthers_;
};

} // namespace wegslot
