// Draws the gauge of a key's signal. The fill eases towards its new value; nothing runs while it
// stands still or is out of sight.
#pragma once

#include "base/clock.h"
#include "ui/signal_bar.h"

#include <QMargins>
#include <QTimer>
#include <QWidget>

#include <optional>

namespace wegslot {

class SignalBarView final : public QWidget {
public:
    /// How much larger than the bar it is: the mark stands out at the ends, and has an outline.
    static constexpr QMargins beyond{3, 1, 3, 1};

    /// `clock` must outlive the view.
    explicit SignalBarView(const Clock& clock);

    void show(const SignalBar& bar, const Color& markerOutline);
    using QWidget::show;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Clock& clock_;
    SignalBar bar_;
    Color markerOutline_;
    std::optional<FillMotion> motion_;
    QTimer frames_;
};

} // namespace wegslot
