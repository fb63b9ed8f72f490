// What the panel says of updates: a banner when there is one to install or installing failed, and
// the lines about the version at the end of the settings.
#pragma once

#include "ui/panel_parts.h"
#include "update/updater.h"

#include <string>
#include <variant>

namespace wegslot::panel {

struct UpdateFacts {
    Updater::State state;
    std::string currentVersion;
    bool isConfigured = false; ///< this build knows where releases are and who signs them
};

/// Something is under way: a spinner and a text, in place of a button.
struct Busy {
    std::string text;
    friend bool operator==(const Busy&, const Busy&) = default;
};

/// On a ground of navy.
struct UpdateOffer {
    std::string symbol;
    std::string title;
    std::string current;
    std::variant<Button, Busy> install;
    std::string notes; ///< as many lines as it takes; empty for none

    friend bool operator==(const UpdateOffer&, const UpdateOffer&) = default;
};

/// On a card, in `color`.
struct UpdateTrouble {
    std::string symbol;
    std::string text;
    Color color = brand::danger;
    Button retry;

    friend bool operator==(const UpdateTrouble&, const UpdateTrouble&) = default;
};

using UpdateBanner = std::variant<std::monostate, UpdateOffer, UpdateTrouble>;

[[nodiscard]] UpdateBanner updateBanner(const UpdateFacts& facts);

struct VersionBlock {
    std::string version;
    std::string status; ///< quiet; empty for no line
    Button check;

    friend bool operator==(const VersionBlock&, const VersionBlock&) = default;
};

[[nodiscard]] VersionBlock versionBlock(const UpdateFacts& facts);

} // namespace wegslot::panel
