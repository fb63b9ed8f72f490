// The kernel's wish to be connected: to one device, or to whichever on the accept list is heard
// first.
#pragma once

#include <optional>
#include <set>

#include "link_events.h"

namespace controller {

/// The devices that the kernel has listed, for scanning and for connecting.
using AcceptList = std::set<Address>;

struct ConnectionRequest {
    /// Nothing for the accept list.
    std::optional<Address> wanted;
    /// How we call ourselves on this link.
    Address own;
    LinkTerms terms;
};

class Initiator {
public:
    bool isOn() const { return request_.has_value(); }

    void start(const ConnectionRequest& request) { request_ = request; }

    void stop() { request_.reset(); }

    /// Only while it is on.
    const ConnectionRequest& request() const { return *request_; }

    /// Whether a device that is heard under this address is the one, or one of those.
    bool wants(const Address& address, const AcceptList& acceptList) const {
        if (!request_) return false;
        return request_->wanted ? *request_->wanted == address : acceptList.contains(address);
    }

private:
    std::optional<ConnectionRequest> request_;
};

} // namespace controller
