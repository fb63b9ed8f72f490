// Borrows the keyboard from the window that has it, and gives it back. The window manager does not
// manage the warning, so it neither gives it the keyboard nor decides who has it next.
#pragma once

#include <cstdint>
#include <optional>

class QWidget;

namespace wegslot {

class KeyboardLoan {
public:
    /// Gives `window` the keyboard, where the system lets it.
    void take(QWidget& window);

    /// Gives it back to who had it, if `window` still has it. Before the window goes.
    void giveBack(const QWidget& window);

private:
    std::optional<std::uint32_t> before_; ///< a window, as the X server numbers it
};

} // namespace wegslot
