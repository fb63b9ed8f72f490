// The parts of the panel that only show: a symbol in its frame, a dot, a divider, a scroll bar.
#pragma once

#include "ui/brand.h"

#include <QScrollBar>
#include <QWidget>

#include <string>

namespace wegslot {

class SymbolImages;

/// A symbol in the middle of a frame, on a rounded tile if it has a ground.
class SymbolView final : public QWidget {
public:
    /// In pixels. `images` must outlive the view.
    SymbolView(const SymbolImages& images, QSize frame, double symbolSide, double cornerRadius = 0);

    void show(const std::string& symbol, const Color& color,
              const Color& ground = Color{}.withOpacity(0));
    using QWidget::show;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const SymbolImages& images_;
    double side_;
    double radius_;
    std::string symbol_;
    Color color_;
    Color ground_;
};

/// A filled shape of one colour: a dot, or a line across.
class Patch final : public QWidget {
public:
    /// `radius` of its corners. Of no fixed width when that is 0.
    Patch(int width, int height, double radius);

    void show(const Color& color);
    using QWidget::show;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    double radius_;
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
