#include "ui/qt/panel/menu_button.h"

#include "ui/contrast.h"
#include "ui/qt/brand_qt.h"
#include "ui/qt/compositor.h"
#include "ui/qt/panel/painting.h"
#include "ui/qt/panel/text.h"

#include <QAction>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <utility>

namespace wegslot {
namespace {

constexpr double roomForArrow = 16;
constexpr int paddingDown = 4;

Font textFont() { return scaledFont(brand::body(13)); }

QString css(const Color& color) {
    return QStringLiteral("rgba(%1,%2,%3,%4)")
        .arg(color.red)
        .arg(color.green)
        .arg(color.blue)
        .arg(color.opacity);
}

QString styleOf(const PanelColors& colors) {
    const int size = static_cast<int>(std::lround(textFont().size));
    return QStringLiteral("QMenu { background: transparent; border: none; padding: 4px; }"
                          "QMenu::item { padding: 5px 16px 5px 10px; color: %1; font-size: %2px; "
                          "border-radius: 5px; }"
                          "QMenu::item:selected { background: %3; }"
                          "QMenu::indicator { width: 12px; height: 12px; left: 4px; }")
        .arg(css(colors.text))
        .arg(size)
        .arg(css(colors.control));
}

} // namespace

FramedMenu::FramedMenu(const QWidget& button) : button_(button) {
    setWindowFlags(windowFlags() | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint);
}

void FramedMenu::frame() {
    const WindowFrame frame(blendsWindows());
    if (frame_ == frame) return;
    frame_ = frame;
    destroy(); // it is translucent from its making, or not
    setAttribute(Qt::WA_TranslucentBackground, frame.isBlended());
    setContentsMargins(frame.margins());
}

/// Qt has placed it as if the frame were part of it.
void FramedMenu::showEvent(QShowEvent* event) {
    QMenu::showEvent(event);
    if (!frame_) return;
    const QMargins around = frame_->margins();
    const bool isBelow = pos().y() > button_.mapToGlobal(button_.rect().center()).y();
    move(pos() + QPoint(-around.left(), isBelow ? -around.top() : around.bottom()));
}

void FramedMenu::paintEvent(QPaintEvent* event) {
    if (frame_) {
        QPainter painter(this);
        frame_->paint(painter, size(), colors_.ground, over(colors_.line, colors_.ground));
    }
    QMenu::paintEvent(event);
}

void FramedMenu::setColors(const PanelColors& colors) {
    colors_ = colors;
    const QString style = styleOf(colors);
    if (style != styleSheet()) setStyleSheet(style);
}

MenuButton::MenuButton(Frame frame, std::function<void(int)> chosen)
    : frame_(frame),
      paddingAcross_(frame == Frame::none ? 4 : 8),
      chosen_(std::move(chosen)),
      menu_(*this) {
    connect(this, &QPushButton::pressed, this, [this] { menu_.frame(); }); // before Qt opens it
    setMenu(&menu_);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(frame == Frame::none ? QSizePolicy::Fixed : QSizePolicy::Preferred,
                  QSizePolicy::Fixed);
    connect(&menu_, &QMenu::triggered, this,
            [this](QAction* action) { chosen_(action->data().toInt()); });
}

void MenuButton::show(const std::string& text, const std::string& name,
                      const std::vector<std::string>& entries, int selected,
                      const PanelColors& colors) {
    colors_ = colors;
    setText(QString::fromStdString(text));
    setAccessibleName(QString::fromStdString(name));
    menu_.setColors(colors);
    if (menu_.actions().size() != static_cast<qsizetype>(entries.size())) {
        menu_.clear();
        for (std::size_t i = 0; i < entries.size(); ++i)
            menu_.addAction(QString())->setData(static_cast<int>(i));
    }
    for (int i = 0; QAction* const action : menu_.actions()) {
        action->setText(QString::fromStdString(entries[static_cast<std::size_t>(i)]));
        action->setCheckable(selected >= 0);
        action->setChecked(i == selected);
        ++i;
    }
    updateGeometry();
    update();
}

QSize MenuButton::sizeHint() const {
    const QtFont font = qtFont(textFont());
    const QFontMetricsF metrics(font.font);
    return {
        static_cast<int>(std::ceil(metrics.horizontalAdvance(text()) * font.scale + roomForArrow)) +
            2 * paddingAcross_,
        static_cast<int>(std::ceil(metrics.height() * font.scale)) + 2 * paddingDown};
}

QSize MenuButton::minimumSizeHint() const {
    const QSize whole = sizeHint();
    return {frame_ == Frame::none ? whole.width() : 60, whole.height()};
}

void MenuButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    constexpr double radius = 6;
    if (frame_ == Frame::drawn) painting::fillRounded(painter, rect(), radius, colors_.control);
    if (underMouse() || isDown()) painting::fillRounded(painter, rect(), radius, colors_.hover);
    const double room = width() - 2 * paddingAcross_ - roomForArrow;
    const QtFont font = qtFont(textFont());
    const QString shown =
        QFontMetricsF(font.font).elidedText(text(), Qt::ElideRight, room / font.scale + 0.5);
    painting::drawLine(painter, QRectF(paddingAcross_, 0, room + 1, height()), shown, textFont(),
                       colors_.text);
    QPainterPath arrow;
    arrow.moveTo(-3.5, -1.5);
    arrow.lineTo(0, 2);
    arrow.lineTo(3.5, -1.5);
    painter.translate(width() - paddingAcross_ - 4, height() / 2.0);
    painter.setPen(QPen(qtColor(colors_.quiet), 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(arrow);
    painter.resetTransform();
    if (hasFocus() && painting::showsFocus(*this))
        painting::strokeFocus(painter, rect(), radius, colors_.focus);
}

} // namespace wegslot
