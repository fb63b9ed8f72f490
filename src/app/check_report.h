// The report of `wegslot --check`: one line for each finding, and whether Wegslot could lock this
// machine. Only puts it into words; app/qt/check looks.
#pragma once

#include "base/time.h"
#include "base/translation.h"
#include "coupling/coupling_radio.h"
#include "model/key_device.h"
#include "model/preference_faults.h"
#include "platform/lock_facts.h"
#include "scanner/bluetooth_central.h"

#include <optional>
#include <string>
#include <vector>

namespace wegslot {

/// What was found.
struct CheckFacts {
    struct Bluetooth {
        bool daemon = false;
        bool isAsked = false;               ///< and has not answered in time
        std::optional<std::string> adapter; ///< "hci0"
        CentralState state = CentralState::unknown;
        bool readsLinks = false; ///< the strength of connections
        /// Why no phone can be coupled here.
        std::optional<coupling::Obstacle> obstacle = coupling::Obstacle::noRadio;
    };
    struct Key {
        std::string name;
        std::optional<bool> changesAddress; ///< nothing where no radio knows the device
        /// Whether the identity that it is known by is kept; nothing where it is known without.
        std::optional<bool> hasIdentity = {};
    };
    struct Locking {
        bool session = false;               ///< logind knows one
        std::vector<std::string> savers;    ///< screen savers and desktops that lock
        std::vector<std::string> listeners; ///< programs that start a locker on logind's signal
        std::vector<std::string> locker;    ///< the command that Wegslot would start itself
        bool lockerInstalled = false;
        std::optional<std::string> wrongCommand; ///< what is wrong with the user's own
        bool hintKept = false; ///< the desktop is known to keep logind's LockedHint
        std::optional<LockWitness> locked;
    };
    struct Activity {
        std::optional<std::string> idleSource;
        std::optional<Seconds> idle; ///< nothing when it did not answer
        /// Whether a film that plays counts as hands for two minutes, and hides them afterwards.
        bool filmsHoldIdleUp = false;
        std::vector<std::string> cameraSources;
        bool cameraInUse = false;
        std::optional<std::string> microphoneSource;
        bool microphoneAnswers = false; ///< or nobody knows who records
        std::optional<std::string> microphoneUser;
    };

    struct Preferences {
        std::optional<std::string> unreadable; ///< why the file cannot be used
        std::vector<PreferenceFault> faults;   ///< of values in it
    };

    Bluetooth bluetooth;
    bool enabled = true;
    std::vector<Key> keys;
    Locking locking;
    Activity activity;
    Preferences preferences;
    bool tray = false;
    bool autostart = false;
};

/// One line of the answer.
struct Finding {
    std::string name; ///< for scripts
    Message label;    ///< for people
    bool works;
    bool needed; ///< without it nothing is ever locked
    std::vector<std::string> found;
    Message text;
};

/// How a lock that was really asked for went.
struct LockProof {
    /// For a screen that was locked before anybody asked, which proves nothing.
    static constexpr Seconds before{-1};

    std::optional<LockWitness> witness; ///< nothing when nobody confirmed in time
    Seconds after{0};

    [[nodiscard]] bool confirms() const { return witness && after != before; }
};

[[nodiscard]] std::vector<Finding> findings(const CheckFacts& facts);

/// Whether everything works that locking takes.
[[nodiscard]] bool canLock(const std::vector<Finding>& findings);

/// The lines for people, without their line feeds.
[[nodiscard]] std::vector<std::string> reportLines(const std::vector<Finding>& findings);
[[nodiscard]] std::string proofLine(const LockProof& proof);

/// One JSON object for scripts; `proof` when a lock was asked for.
[[nodiscard]] std::string reportJson(const std::vector<Finding>& findings,
                                     const std::optional<LockProof>& proof);

} // namespace wegslot
