// Draws the gauge of a key's signal. The fill eases towards its new value; nothing runs while it
// stands still or is out of sight.
#pragma once

#include "base/clock.h"
#include "ui/signal_bar.h"

#include <QTimer>
#include <QWidget>

#include <optional>

namespace wegslot {

class SignalBarView final : public QWidget {
public:
    /// `clock` must outlive the view.
    explicit SignalBarView(const Clock& clock);

    void show(const SignalBar& bar);
    using QWidget::show;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Clock& clock_;
    SignalBar bar_;
    std::optional<FillMotion> motion_;
    QTimer frames_;
};

} // namespace wegslot
