// Renders the panel, fully unfolded, into an image file without putting a window on any screen.
#pragma once

#include "app/qt/menu_panel.h"
#include "base/scheduler.h"

#include <functional>
#include <string>

class QWidget;

namespace wegslot {

class Snapshot {
public:
    /// Until the picture: by then what is nearby has been heard.
    static constexpr Nanoseconds delay = std::chrono::seconds{15};
    static constexpr int tallHeight = 1600;

    /// Writes the panel to `path` once, after `delay`, and then calls `done`.
    Snapshot(MenuPanel::Parts parts, std::string path, bool isTall, std::function<void()> done);

    /// Writes what `view` looks like as a PNG over what is there, for its owner's eyes only. A
    /// failure writes nothing and is not told.
    static void write(QWidget& view, const std::string& path);

private:
    void take();

    MenuPanel::Parts parts_;
    std::string path_;
    bool isTall_;
    std::function<void()> done_;
    PanelModel model_;
    Timer timer_;
};

} // namespace wegslot
