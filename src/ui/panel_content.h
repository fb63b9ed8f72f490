// Everything the menu panel shows, as one value that leaves nothing for the view to decide. Made
// anew from the settings, the scanner, the monitor and the updater whenever one of them changes;
// `PanelModel` has what can be done with it.
#pragma once

#include "model/settings.h"
#include "monitor/monitor.h"
#include "scanner/scanner.h"
#include "ui/key_row.h"
#include "ui/nearby_group.h"
#include "ui/panel_parts.h"
#include "ui/phase_presentation.h"
#include "ui/removed_keys.h"
#include "ui/scheme.h"
#include "ui/settings_group.h"
#include "ui/update_presentation.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace wegslot {

namespace panel {

struct Header {
    std::string symbol;
    Color symbolColor; ///< on a tile of navy
    std::string name;
    Color nameColor;
    Color dot;
    std::string status; ///< one line, quiet
    Toggle enabled;     ///< a switch without a text

    friend bool operator==(const Header&, const Header&) = default;
};

struct RulePicker {
    struct Option {
        LockRule rule{};
        std::string text;
        friend bool operator==(const Option&, const Option&) = default;
    };

    std::string label;
    std::vector<Option> options;
    LockRule selected{};

    friend bool operator==(const RulePicker&, const RulePicker&) = default;
};

using KeyPlace = std::variant<KeyRow, RemovedRow>;

struct KeysSection {
    std::string title;
    std::vector<KeyPlace> rows;
    std::string instruction; ///< on a card; empty when there are keys
    std::optional<RulePicker> rule;

    friend bool operator==(const KeysSection&, const KeysSection&) = default;
};

/// What is asked once, below the keys.
struct LoginOffer {
    std::string text;
    std::optional<Button> accept; ///< nothing where it was tried in vain
    Button decline;

    friend bool operator==(const LoginOffer&, const LoginOffer&) = default;
};

struct PauseMenu {
    struct Entry {
        std::string text;
        Seconds duration;
        friend bool operator==(const Entry&, const Entry&) = default;
    };

    std::string text;
    std::vector<Entry> entries;

    friend bool operator==(const PauseMenu&, const PauseMenu&) = default;
};

struct Footer {
    Button lock;
    std::variant<PauseMenu, Button> pause; ///< the button resumes
    Button log;
    Button quit;

    friend bool operator==(const Footer&, const Footer&) = default;
};

/// Where a finger holds the slider of a key.
struct HeldThreshold {
    Uuid id;
    Dbm value;
};

/// A threshold that was just set by the present signal.
struct JustSet {
    Uuid id;
    Dbm signal;
    Dbm threshold; ///< as it is stored
};

enum class LoginOffering { none, offered, failed };

/// What only the panel knows.
struct Flags {
    bool showNearby = false;
    bool showNameless = false;
    bool showSettings = false;
    bool launchAtLogin = false;
    LoginOffering loginOffering = LoginOffering::none;
    std::vector<RemovedKey> removed = {}; ///< keys that can be taken back, in the order of removal
    std::optional<HeldThreshold> heldThreshold = {};
    std::optional<JustSet> justSet = {};
    std::optional<NearbyPlaces> heldPlaces = {};
};

} // namespace panel

/// The parts in the order in which they are shown: the header, then what scrolls, then the
/// footer, with a divider between each two.
struct PanelContent {
    // Device-independent pixels.
    static constexpr double width = 380;
    static constexpr double tallest = 600;

    Color ground;
    Color accent = brand::orange;
    panel::Header header;
    panel::UpdateBanner banner;
    panel::KeysSection keys;
    std::optional<panel::LoginOffer> loginOffer;
    panel::NearbyGroup nearby;
    panel::SettingsGroup settings;
    panel::Footer footer;

    friend bool operator==(const PanelContent&, const PanelContent&) = default;
};

/// `visible`: the height of the main screen that no bar covers; nothing without a screen.
[[nodiscard]] double panelHeight(const std::optional<double>& visible);

struct PanelSources {
    const Settings& settings;
    const Scanner& scanner;
    const Monitor& monitor;
    const panel::UpdateFacts& update;
    TimePoint now; ///< on the steady clock
    const ClockTime& clockTime;
    Scheme scheme = Scheme::light;
};

[[nodiscard]] PanelContent panelContent(const PanelSources& sources, const panel::Flags& flags);

} // namespace wegslot
