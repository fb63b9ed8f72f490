#include "platform/linux/idle/wayland_idle.h"

namespace wegslot {

WaylandIdle::WaylandIdle(const DisplayEnvironment& environment, const Clock& clock,
                         Scheduler& scheduler, Descriptors& descriptors)
    : socket_(compositorSocket(environment)),
      clock_(clock),
      scheduler_(scheduler),
      descriptors_(descriptors) {
    if (socket_) connect();
}

std::string WaylandIdle::name() const {
    const auto protocol = watch_ ? watch_->protocol() : std::nullopt;
    return protocol ? "Wayland (" + *protocol + ")" : "Wayland";
}

bool WaylandIdle::isThere() const { return watch_ && watch_->isWatching(); }

std::optional<Seconds> WaylandIdle::idleTime() {
    // What is known is worth nothing when the compositor hangs: nobody would have told.
    if (!isThere()) return std::nullopt;
    const bool answered = connection_->answers(answerPatience);
    if (connection_->isLost()) lose();
    return answered && watch_ ? watch_->idleTime() : std::nullopt;
}

void WaylandIdle::connect() {
    connection_ = WaylandConnection::open(*socket_);
    if (!connection_) return lose();
    watch_ = std::make_unique<IdleWatch>(connection_->display(), clock_);
    reading_ = descriptors_.onReadable(connection_->descriptor(), [this] { handle(); });
    handle(); // sends what the watch asked
}

void WaylandIdle::handle() {
    connection_->handle();
    if (connection_->isLost()) lose();
}

void WaylandIdle::lose() {
    reading_.reset();
    watch_.reset();
    connection_.reset();
    retry_ = scheduler_.after(retryInterval, [this] { connect(); });
}

} // namespace wegslot
