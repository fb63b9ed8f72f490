// The connections there are. Each has a handle that no earlier one had lately, so that what is
// meant for a lost link never reaches the next.
#pragma once

#include <map>
#include <memory>

#include "link.h"

namespace controller {

class Links {
public:
    explicit Links(Outbox& outbox) : outbox_(outbox) {}

    /// Tells the device.
    Link& open(const Link::Ends& ends, Peer& peer);

    /// Null if there is none.
    Link* find(LinkHandle handle);
    Link* find(const Peer& peer);

    bool hasPeerAt(const Address& address) const;

    /// Tells the kernel and the device.
    void close(LinkHandle handle, std::uint8_t reason);

    /// Tells the devices only: after a reset, or without a controller, the kernel knows.
    void forgetAll();

private:
    Outbox& outbox_;
    std::map<LinkHandle, std::unique_ptr<Link>> links_;
    LinkHandle last_ = 0;
};

} // namespace controller
