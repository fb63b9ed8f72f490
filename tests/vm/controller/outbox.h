// The packets on their way to the kernel. While a command is being carried out they wait, because
// its answer has to arrive before what follows from it.
#pragma once

#include <functional>
#include <utility>
#include <vector>

#include "bytes.h"

namespace controller {

/// Takes one whole packet for the kernel.
using Send = std::function<void(ByteView)>;

class Outbox {
public:
    explicit Outbox(Send send) : send_(std::move(send)) {}

    void put(Bytes packet) {
        if (isHeld_)
            waiting_.push_back(std::move(packet));
        else
            send_(packet);
    }

    void hold() { isHeld_ = true; }

    /// The answer goes first.
    void release(ByteView answer) {
        isHeld_ = false;
        send_(answer);
        for (const Bytes& packet : std::exchange(waiting_, {}))
            send_(packet);
    }

private:
    Send send_;
    std::vector<Bytes> waiting_;
    bool isHeld_ = false;
};

} // namespace controller
