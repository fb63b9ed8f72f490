// A connection of our own to the compositor, apart from the toolkit's. Whatever the compositor
// does, nothing here waits for it, except `answers`, for as long as it is told to. Knows no
// protocol.
#pragma once

#include <chrono>
#include <memory>
#include <string>

struct wl_callback;
struct wl_callback_listener;
struct wl_display;

namespace wegslot {

class WaylandConnection {
public:
    /// Null when nobody takes connections at the path `socket`.
    [[nodiscard]] static std::unique_ptr<WaylandConnection> open(const std::string& socket);

    /// Takes over `display`.
    explicit WaylandConnection(wl_display* display) : display_(display) {}
    WaylandConnection(const WaylandConnection&) = delete;
    WaylandConnection& operator=(const WaylandConnection&) = delete;
    ~WaylandConnection();

    [[nodiscard]] wl_display* display() const { return display_; }
    [[nodiscard]] int descriptor() const;

    /// Handles the events that have come in and sends what waits.
    void handle();

    /// True for ever once the compositor has gone, or talked nonsense.
    [[nodiscard]] bool isLost() const;

    /// Whether the compositor answers within `patience`: if so, all that it said before has been
    /// handled. While it owes an earlier answer this does not wait.
    [[nodiscard]] bool answers(std::chrono::milliseconds patience);

private:
    static const wl_callback_listener listener;

    void forgetQuestion();

    wl_display* display_;
    wl_callback* unanswered_ = nullptr;
};

} // namespace wegslot
