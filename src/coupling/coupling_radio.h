// The port to a radio on which this computer appears for a while as a peripheral, so that a phone
// can bond with it and hand over its identity. One visitor at a time: the first device that
// connects meanwhile. Everybody else, and everything that was asked for by somebody else, is
// refused.
#pragma once

#include "base/translation.h"
#include "base/uuid.h"

#include <cstdint>
#include <optional>
#include <string>

namespace wegslot::coupling {

/// Why this computer cannot appear.
enum class Obstacle {
    noRadio,      ///< no adapter, or nobody to serve it
    off,          ///< Bluetooth is off
    noPeripheral, ///< the adapter cannot be a peripheral
    noRoom,       ///< all that it can advertise is taken
    denied,       ///< this user may not
    discoverable, ///< the desktop shows the computer to all: phones would pair with the other half
    failed,       ///< it was asked and did not; `Trouble::why` says what it answered
};

struct Trouble {
    Obstacle obstacle;
    std::string why = {}; ///< the stack's own words; empty where the obstacle says it all

    friend bool operator==(const Trouble&, const Trouble&) = default;
};

/// How the owner confirms the bond.
enum class Confirmation {
    code,    ///< both show one, and it must be the same
    without, ///< for what has no screen, and for what failed with a code
};

/// What came of a bond that was asked for.
enum class Refusal {
    cancelled, ///< at the other side
    noAnswer,  ///< nobody said yes in time
    otherBond, ///< one of the two sides has a bond from before
    failed,    ///< anything else; `why` is the stack's name for it
};

/// The device on the other side, as far as it is known.
struct Visitor {
    std::optional<std::string> name;
    /// That of its fixed address; nothing while it has shown none. This is what a bond is for.
    std::optional<Uuid> identity;

    friend bool operator==(const Visitor&, const Visitor&) = default;
};

/// What the radio tells, from the loop and never from within one of the calls below.
class CouplingListener {
public:
    CouplingListener() = default;
    CouplingListener(const CouplingListener&) = delete;
    CouplingListener& operator=(const CouplingListener&) = delete;
    virtual ~CouplingListener() = default;

    /// It is on the air. Once after `appear`, unless `cannotAppear` comes instead.
    virtual void appears() = 0;
    /// It does not appear, or no longer does; all is being put back, and `isGone` follows.
    virtual void cannotAppear(const Trouble& trouble) = 0;
    /// A device that this computer is not bonded with has connected.
    virtual void visitorCame(const Visitor& visitor) = 0;
    /// A device has connected that is bonded from before, whatever it thinks of that itself. It can
    /// be forgotten, or left alone by waiting on.
    virtual void acquaintanceCame(const Visitor& visitor) = 0;
    /// What is known of the visitor is more than it was.
    virtual void visitorChanged(const Visitor& visitor) = 0;
    /// The visitor went before it was bonded. Another may come. Once it is bonded, or if it was an
    /// acquaintance, its going is not told.
    virtual void visitorLeft() = 0;
    /// The visitor shows `code`, six digits, if it is who it seems; `answer` is waited for.
    virtual void codeCame(std::uint32_t code) = 0;
    /// Nobody waits for the answer any more.
    virtual void codeWithdrawn() = 0;
    /// Its identity may be told a moment later, with `visitorChanged`.
    virtual void bonded(const Visitor& visitor) = 0;
    /// What came of `askForBond`; perhaps after the visitor has left for the same reason. A bond
    /// that the visitor began itself and that fails shows by its leaving alone.
    virtual void refused(Refusal refusal, const std::string& why) = 0;
    /// The end of every `appear`: everything is as it was before.
    virtual void isGone() = 0;
};

class CouplingRadio {
public:
    CouplingRadio() = default;
    CouplingRadio(const CouplingRadio&) = delete;
    CouplingRadio& operator=(const CouplingRadio&) = delete;
    virtual ~CouplingRadio() = default;

    /// Who is told from now on; null for nobody.
    virtual void setListener(CouplingListener* listener) = 0;

    /// Shows this computer as a peripheral called `name` until `disappear`. The radio listens to
    /// nothing else meanwhile. Nothing while it appears already, or has not gone yet.
    virtual void appear(const std::string& name, Confirmation confirmation) = 0;

    /// Asks the visitor for the bond, if it has not begun by itself.
    virtual void askForBond() = 0;

    /// Whether the visitor shows the code that came.
    virtual void answer(bool same) = 0;

    /// Drops the visitor, or where there is none the acquaintance, with its bond: it is a stranger
    /// again, of which nothing more is told until it comes anew. `isGone` waits until it is done.
    virtual void forget() = 0;

    /// Puts everything back, keeping the visitor's bond; answered by `isGone`, at once if there is
    /// nothing to put back. The link to the visitor is ended if nobody else uses it.
    virtual void disappear() = 0;
};

} // namespace wegslot::coupling
