#include "links.h"

#include <algorithm>

namespace controller {

namespace {

constexpr LinkHandle firstHandle = 0x0040;
constexpr LinkHandle lastHandle = 0x0EFF;

LinkHandle after(LinkHandle handle) {
    if (handle < firstHandle || handle >= lastHandle) return firstHandle;
    return static_cast<LinkHandle>(handle + 1);
}

} // namespace

Link& Links::open(const Link::Ends& ends, Peer& peer) {
    do {
        last_ = after(last_);
    } while (links_.contains(last_));
    auto& link = links_[last_];
    link = std::make_unique<Link>(last_, ends, peer, outbox_);
    peer.linked(*link);
    return *link;
}

Link* Links::find(LinkHandle handle) {
    const auto found = links_.find(handle);
    return found == links_.end() ? nullptr : found->second.get();
}

Link* Links::find(const Peer& peer) {
    const auto found = std::find_if(links_.begin(), links_.end(), [&](const auto& each) {
        return &each.second->peer() == &peer;
    });
    return found == links_.end() ? nullptr : found->second.get();
}

bool Links::hasPeerAt(const Address& address) const {
    return std::any_of(links_.begin(), links_.end(),
                       [&](const auto& each) { return each.second->ends().peer == address; });
}

void Links::close(LinkHandle handle, std::uint8_t reason) {
    const auto found = links_.find(handle);
    if (found == links_.end()) return;
    found->second->peer().unlinked();
    links_.erase(found);
    outbox_.put(disconnectionComplete(handle, reason));
}

void Links::forgetAll() {
    for (const auto& [handle, link] : links_)
        link->peer().unlinked();
    links_.clear();
}

} // namespace controller
