// Where somebody who couples a phone is, and what can be done there.
#pragma once

#include "base/result.h"
#include "base/time.h"
#include "coupling/coupling_radio.h"
#include "coupling/listening.h"
#include "scanner/dbm.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace wegslot::coupling {

enum class Kind { iphone, android, watch };

/// As the command line spells it: "iphone", "android" or "watch".
[[nodiscard]] std::optional<Kind> kindNamed(std::string_view name);

/// Why it came to nothing.
enum class Ending {
    nobodyCame,
    cancelledThere, ///< at the phone
    noAnswer,       ///< the phone was asked, and nobody answered there
    otherCode,      ///< the owner says that the phone shows another
    bondFromBefore, ///< the phone, or this computer, knows the other from before
    bondFailed,     ///< otherwise; with the stack's own words
    noIdentity,     ///< it bonded and kept its identity to itself
    notTheOwners,   ///< the owner says that it is somebody else's
    tookTooLong,
};

namespace step {

/// What is it?
struct Choosing {
    friend bool operator==(const Choosing&, const Choosing&) = default;
};
/// Nothing is to be coupled: its identity is known already, and pasted.
struct Pasting {
    std::optional<Failure> fault = {}; ///< of what was pasted last
    friend bool operator==(const Pasting&, const Pasting&) = default;
};
/// It is a key by the identity that was pasted.
struct Pasted {
    std::string name;
    friend bool operator==(const Pasted&, const Pasted&) = default;
};
/// The radio is asked to appear.
struct Preparing {
    friend bool operator==(const Preparing&, const Preparing&) = default;
};
/// The phone's Bluetooth page lists `name`.
struct Visible {
    std::string name;
    TimePoint until;
    bool again = false; ///< somebody came and went
    friend bool operator==(const Visible&, const Visible&) = default;
};
/// Who connected is bonded from before: is that bond to go?
struct Acquainted {
    Visitor visitor;
    TimePoint until;
    friend bool operator==(const Acquainted&, const Acquainted&) = default;
};
/// The phone asks its owner.
struct Bonding {
    TimePoint until;
    friend bool operator==(const Bonding&, const Bonding&) = default;
};
/// Does the phone show the same?
struct Comparing {
    std::uint32_t code;
    TimePoint until;
    friend bool operator==(const Comparing&, const Comparing&) = default;
};
/// Bonded; its identity must still come.
struct Identifying {
    TimePoint until;
    friend bool operator==(const Identifying&, const Identifying&) = default;
};
/// Is it the owner's?
struct Owning {
    Visitor visitor;
    TimePoint until;
    friend bool operator==(const Owning&, const Owning&) = default;
};
/// All is put back, and the radio listens again.
struct PuttingBack {
    friend bool operator==(const PuttingBack&, const PuttingBack&) = default;
};
/// Listens to it while its screen is lit.
struct ListeningLit {
    TimePoint until;
    friend bool operator==(const ListeningLit&, const ListeningLit&) = default;
};
/// It is to be locked and put away.
struct Pocketing {
    friend bool operator==(const Pocketing&, const Pocketing&) = default;
};
/// Listens to it where it is carried.
struct ListeningAway {
    TimePoint until;
    friend bool operator==(const ListeningAway&, const ListeningAway&) = default;
};
/// It is a key now, unless it was silent.
struct Judged {
    Audibility audibility;
    std::string name;
    std::optional<Dbm> threshold; ///< the key's; none for a silent one
    bool unheard = false;         ///< when the threshold was to be set from here
    friend bool operator==(const Judged&, const Judged&) = default;
};
/// Not begun, or not ended well, because of the radio.
struct Hindered {
    Trouble trouble;
    friend bool operator==(const Hindered&, const Hindered&) = default;
};
struct Failed {
    Ending ending;
    std::string why = {}; ///< the stack's own words, where there are any
    friend bool operator==(const Failed&, const Failed&) = default;
};
/// Everything is put back, and nobody looks any more.
struct Closed {
    friend bool operator==(const Closed&, const Closed&) = default;
};

} // namespace step

using Step =
    std::variant<step::Choosing, step::Pasting, step::Pasted, step::Preparing, step::Visible,
                 step::Acquainted, step::Bonding, step::Comparing, step::Identifying, step::Owning,
                 step::PuttingBack, step::ListeningLit, step::Pocketing, step::ListeningAway,
                 step::Judged, step::Hindered, step::Failed, step::Closed>;

/// What a person can do; which of it when, the page of a step says. Anything else does nothing.
enum class Action {
    iphone,
    android,
    watch,
    paste,
    yes,
    no,
    proceed,         ///< the phone is put away; or once more
    takeLostTimeout, ///< let its gaps pass
    setFromHere,     ///< the threshold, from how it is heard now
    back,            ///< to the beginning
    close,
};

} // namespace wegslot::coupling
