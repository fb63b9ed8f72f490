// Shows that something is under way: an arc that turns while it is visible.
#pragma once

#include "ui/brand.h"

#include <QTimer>
#include <QWidget>

namespace wegslot {

class Spinner final : public QWidget {
public:
    explicit Spinner(const Color& color);

    [[nodiscard]] QSize sizeHint() const override { return {14, 14}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    Color color_;
    int turned_ = 0; ///< degrees
    QTimer frames_;
};

} // namespace wegslot
