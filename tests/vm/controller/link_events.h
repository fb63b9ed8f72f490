// The events that tell the kernel what becomes of links.
#pragma once

#include "address.h"
#include "bytes.h"
#include "h4.h"

namespace controller {

using LinkHandle = std::uint16_t;

/// What a link was agreed to be, in the units of the air: the interval in 1.25 ms, the supervision
/// time-out in 10 ms.
struct LinkTerms {
    unsigned interval = 0;
    unsigned latency = 0;
    unsigned timeout = 0;
};

/// What the controller is on a link: who asked for it, or who was asked.
enum class LinkRole : std::uint8_t { Central = 0, Peripheral = 1 };

/// Handle and terms count only on success.
struct NewLink {
    LinkHandle handle = 0;
    LinkRole role = LinkRole::Central;
    Address peer;
    LinkTerms terms;
};

/// A controller with extended advertising uses the enhanced form, and the kernel waits for no
/// other.
enum class EventForm : std::uint8_t { Older, Enhanced };

Bytes connectionComplete(Status status, const NewLink& link, EventForm form);

/// A set is off the air, on success because it has become this link.
Bytes advertisingSetTerminated(Status status, std::uint8_t set, LinkHandle handle);

/// The reason is any of the air's, as a test may choose one.
Bytes disconnectionComplete(LinkHandle handle, std::uint8_t reason);

Bytes connectionUpdateComplete(LinkHandle handle, const LinkTerms& terms);
Bytes remoteFeaturesComplete(LinkHandle handle);
Bytes remoteVersionComplete(LinkHandle handle);

/// The sizes that both sides use from now on, the largest there are.
Bytes dataLengthChange(LinkHandle handle);

/// The other side wants the link encrypted with a key that goes by these numbers.
Bytes longTermKeyRequest(LinkHandle handle, ByteView random, unsigned diversifier);

/// On success the link is encrypted from now on.
Bytes encryptionChange(LinkHandle handle, Status status);

/// As `encryptionChange`, on a link that was encrypted already.
Bytes encryptionKeyRefreshComplete(LinkHandle handle, Status status);

/// The controller has taken one packet and has room for another.
Bytes onePacketCompleted(LinkHandle handle);

Bytes hardwareError(std::uint8_t code);

} // namespace controller
