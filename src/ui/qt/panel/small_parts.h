// The parts of the panel that only show: a symbol in its frame, a dot, a divider, a scroll bar.
#pragma once

#include "ui/brand.h"

#include <QScrollBar>
#include <QWidget>

#include <string>

namespace wegslot {

class SymbolImages;

/// A symbol on the left of its frame, where texts begin, or in the middle of a rounded tile.
class SymbolView final : public QWidget {
public:
    struct Colors {
        Color ink;
        Color ground = Color{}.withOpacity(0);
        /// Around the tile, or around the symbol that has none.
        Color outline = Color{}.withOpacity(0);

        friend bool operator==(const Colors&, const Colors&) = default;
    };

    /// In pixels. `images` must outlive the view.
    SymbolView(const SymbolImages& images, QSize frame, double symbolSide, double cornerRadius = 0);

    void show(const std::string& symbol, const Colors& colors);
    using QWidget::show;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void paintOutlined(QPainter& painter, QPointF place, double side) const;

    const SymbolImages& images_;
    double side_;
    double radius_;
    std::string symbol_;
    Colors colors_;
};

/// Seven pixels across, and room for an outline around them.
class Dot final : public QWidget {
public:
    Dot();

    void show(const Color& color, const Color& outline);
    using QWidget::show;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Color color_;
    Color outline_;
};

/// A line across between two parts.
class Divider final : public QWidget {
public:
    Divider() { setFixedHeight(1); }

    void show(const Color& color);
    using QWidget::show;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Color color_;
};

/// Thin, and not there when there is nothing to scroll.
class ThinScrollBar final : public QScrollBar {
public:
    static constexpr int thickness = 8;

    ThinScrollBar() { setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding); }

    void show(const Color& color);
    using QScrollBar::show;

    [[nodiscard]] QSize sizeHint() const override { return {thickness, 40}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Color color_;
};

} // namespace wegslot
