// The slider of a key's threshold, in tenths of a dBm. A press on it takes it there at once.
#pragma once

#include "ui/panel_colors.h"
#include "ui/panel_parts.h"
#include "ui/qt/text_scale.h"

#include <QSlider>

namespace wegslot {

class ThresholdSlider final : public QSlider {
public:
    ThresholdSlider();

    /// `name`: what it sets, for a screen reader.
    void show(const panel::ThresholdSlider& slider, const std::string& name,
              const PanelColors& colors);
    using QSlider::show;

    [[nodiscard]] Dbm threshold() const;

    [[nodiscard]] QSize sizeHint() const override { return {120, scaledControl(22)}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {60, scaledControl(22)}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    [[nodiscard]] double knobLeft() const;
    void moveTo(double x);

    PanelColors colors_ = panelColors(Scheme::light);
};

} // namespace wegslot
