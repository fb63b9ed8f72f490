// What the colours and lines of the timeline mean.
#pragma once

#include "insight/qt/surroundings.h"

#include <QWidget>

namespace wegslot::insight {

class LegendView final : public QWidget {
public:
    explicit LegendView(const Surroundings& surroundings);

    [[nodiscard]] QSize sizeHint() const override {
        return {sizeWithin(100'000).width(), heightForWidth(100'000)};
    }
    [[nodiscard]] int heightForWidth(int width) const override {
        return sizeWithin(width).height();
    }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QSize sizeWithin(int width) const;

    Surroundings surroundings_;
};

} // namespace wegslot::insight
