// Waits for the kernel, for scripts and for the next advertisement, and serves whichever comes.
#pragma once

#include <list>

#include "air.h"
#include "control_socket.h"
#include "controller.h"
#include "director.h"
#include "virtual_port.h"

namespace controller {

class EventLoop {
public:
    EventLoop(VirtualPort& port, Controller& controller, Air& air, Director& director);

    /// Scripts that call while the loop runs.
    void listenTo(ControlSocket socket) { socket_ = std::move(socket); }

    /// A script that is there from the start; when it goes, the loop ends.
    void serve(LineChannel owner);

    /// Until a script says quit, or the owner goes.
    void run();

private:
    void waitForNext();

    VirtualPort& port_;
    Controller& controller_;
    Air& air_;
    Director& director_;
    ControlSocket socket_;
    std::list<LineChannel> scripts_;
    bool hasOwner_ = false;
};

} // namespace controller
