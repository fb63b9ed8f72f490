// The warning's window: above everything, in its place, and never taking the keyboard by itself.
// Shows the countdown that it is given; others decide when that changes.
#pragma once

#include "hud/countdown.h"
#include "hud/qt/keyboard_loan.h"

#include <QPixmap>
#include <QString>
#include <QWidget>

#include <functional>

namespace wegslot {

class WarningPanel final : public QWidget {
public:
    /// `pressed` is called for each press of the button or of Escape; it may hide this panel.
    WarningPanel(const QString& message, const Countdown& countdown, std::function<void()> pressed);

    /// Puts it on the main screen, in front of whatever is there.
    void present();

    /// Repaints the ring, unless it shows this already.
    void setCountdown(const Countdown& countdown);

    /// Goes from the screen for good and reports no press any more. Ends itself later, for this
    /// may be called from within a press.
    void retire();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void place();
    void press() const;
    void renewGround();

    QString message_;
    Countdown countdown_;
    std::function<void()> pressed_;
    QPixmap ground_; ///< all that stays as it is, painted once
    KeyboardLoan keyboard_;
};

} // namespace wegslot
