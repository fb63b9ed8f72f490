// The frame of a window to which the desktop gives none: a hairline around it and, where windows
// are blended, round corners and a soft shadow, so that it does not dissolve into a window of its
// own colour behind it. For the panel and its menus. All of it lies in the window's margins.
#pragma once

#include "ui/brand.h"

#include <QMargins>
#include <QRect>

class QPainter;

namespace wegslot {

class WindowFrame {
public:
    explicit WindowFrame(bool isBlended) : isBlended_(isBlended) {}

    [[nodiscard]] bool isBlended() const { return isBlended_; }

    /// What it takes around what it frames.
    [[nodiscard]] QMargins margins() const;

    /// Of what it frames.
    [[nodiscard]] double cornerRadius() const { return isBlended_ ? 10 : 0; }

    /// Paints it, and the ground within, for a window of this size. Both colours are opaque.
    void paint(QPainter& painter, const QSize& window, const Color& ground,
               const Color& line) const;

    friend bool operator==(const WindowFrame&, const WindowFrame&) = default;

private:
    bool isBlended_;
};

} // namespace wegslot
