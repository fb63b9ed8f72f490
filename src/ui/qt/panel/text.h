// Text in the panel: sizes of half a pixel, larger where the desktop's own text is, digits of equal
// width in every font, and one of three ways of fitting where there is too little room. Lies where
// the label's alignment says. To a screen reader it is a label.
#pragma once

#include "ui/brand.h"
#include "ui/qt/text_scale.h"

#include <QLabel>

#include <string>

class QTextLayout;

namespace wegslot {

class Text final : public QLabel {
public:
    enum class Fit {
        whole,  ///< takes the width it needs
        elided, ///< one line, cut short with an ellipsis
        wrapped ///< as many lines as it takes
    };

    /// `least`: how many pixels of an elided text are kept where there is too little room for all.
    explicit Text(const Font& font, Fit fit = Fit::whole, int least = 24);

    void show(const std::string& text, const Color& color);
    using QLabel::show;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QSize sizeWithin(double width) const;
    [[nodiscard]] QSizeF layOut(QTextLayout& layout, double width) const;

    QFont font_;
    qreal scale_;
    Fit fit_;
    int least_;
    Color color_;
};

} // namespace wegslot
