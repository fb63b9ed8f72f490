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

/// Handle and terms count only on success.
Bytes connectionComplete(Status status, LinkHandle handle, const Address& peer,
                         const LinkTerms& terms);

/// The reason is any of the air's, as a test may choose one.
Bytes disconnectionComplete(LinkHandle handle, std::uint8_t reason);

Bytes connectionUpdateComplete(LinkHandle handle, const LinkTerms& terms);
Bytes remoteFeaturesComplete(LinkHandle handle);
Bytes remoteVersionComplete(LinkHandle handle);

/// The sizes that both sides use from now on, the largest there are.
Bytes dataLengthChange(LinkHandle handle);

/// On success the link is encrypted from now on.
Bytes encryptionChange(LinkHandle handle, Status status);

/// As `encryptionChange`, on a link that was encrypted already.
Bytes encryptionKeyRefreshComplete(LinkHandle handle, Status status);

/// The controller has taken one packet and has room for another.
Bytes onePacketCompleted(LinkHandle handle);

Bytes hardwareError(std::uint8_t code);

} // namespace controller
