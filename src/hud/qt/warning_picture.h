// How the warning panel looks: where its parts are and how they are painted, in device-independent
// pixels from the panel's corner. Knows neither window nor time.
#pragma once

#include "hud/countdown.h"

#include <QPainter>
#include <QRect>
#include <QSize>
#include <QString>

namespace wegslot::picture {

inline constexpr QSize size{400, 96};

/// The frame of the ring, and all that painting it touches: the stroke lies on the frame's edge.
inline constexpr QRect ringFrame{18, 24, 48, 48};
inline constexpr QRect ringBounds = ringFrame.adjusted(-3, -3, 3, 3);

/// The corners of the panel.
inline constexpr qreal cornerRadius = 22;

[[nodiscard]] QString title();
[[nodiscard]] QString buttonLabel();

/// Where the button stands: it is as wide as its label takes in the fonts of this machine.
[[nodiscard]] QRect buttonFrame();

/// Everything that stays as it is: the ground, the ring's track and the two texts.
void paintStill(QPainter& painter, const QString& message);

/// The arc and the number in it, on top of what stays.
void paintCountdown(QPainter& painter, const Countdown& countdown);

struct ButtonState {
    bool isDown = false;
    bool isPointedAt = false;
    bool hasKeyboard = false;
};

/// The button, in a frame of its own size.
void paintButton(QPainter& painter, const QSize& frame, const ButtonState& state);

} // namespace wegslot::picture
