// A connection to an X server that counts how long its input devices are untouched. Every
// operation waits for the server, without limit if that hangs: for a thread of its own.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

struct xcb_connection_t;

namespace wegslot {

class X11Server {
public:
    /// Null when there is no server, when it does not count, and when it stands in a window
    /// system that sees the input before it.
    [[nodiscard]] static std::unique_ptr<X11Server> connect(const std::string& display);

    /// Takes over `connection`, which may have failed already.
    X11Server(xcb_connection_t* connection, int screen);
    X11Server(const X11Server&) = delete;
    X11Server& operator=(const X11Server&) = delete;
    ~X11Server();

    /// False once the server is gone.
    [[nodiscard]] bool isConnected() const;

    [[nodiscard]] std::optional<std::chrono::milliseconds> idleTime();

private:
    [[nodiscard]] bool countsAllInput() const;

    xcb_connection_t* connection_;
    int screen_;
};

} // namespace wegslot
