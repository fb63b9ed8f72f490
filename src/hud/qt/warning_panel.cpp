#include "hud/qt/warning_panel.h"

#include "hud/qt/capsule_button.h"
#include "hud/qt/warning_picture.h"
#include "ui/qt/brand_qt.h"
#include "ui/qt/compositor.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QBitmap>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>

#include <cmath>
#include <memory>
#include <utility>

namespace wegslot {
namespace {

constexpr int belowTheTop = 12;

Qt::WindowFlags flags() {
    Qt::WindowFlags flags = Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;
    // On X11 whoever the window manager does not know is above full-screen windows, on every
    // desktop, exactly placed, and is never given the keyboard. Elsewhere Qt would not show it.
    if (QGuiApplication::platformName() != "wayland") flags |= Qt::BypassWindowManagerHint;
    return flags;
}

/// The corners cut off, for where nothing blends them.
QRegion roundedShape() {
    QBitmap shape(picture::size);
    shape.fill(Qt::color0);
    QPainter painter(&shape);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::color1);
    painter.drawRoundedRect(QRectF(QPointF(0, 0), picture::size), picture::cornerRadius,
                            picture::cornerRadius);
    painter.end();
    return {shape};
}

/// To a screen reader the panel is an alert, not one more window.
class Alert final : public QAccessibleWidget {
public:
    explicit Alert(QWidget* panel) : QAccessibleWidget(panel, QAccessible::AlertMessage) {}
    ~Alert() override = default;
};

/// What Qt asks for how `object` appears to a screen reader, and then owns the answer.
QAccessibleInterface* asAlert(const QString&, QObject* object) {
    auto* const panel = dynamic_cast<WarningPanel*>(object);
    return panel == nullptr ? nullptr : std::make_unique<Alert>(panel).release();
}

} // namespace

WarningPanel::WarningPanel(const QString& message, const Countdown& countdown,
                           std::function<void()> pressed)
    : QWidget(nullptr, flags()),
      message_(message),
      countdown_(countdown),
      pressed_(std::move(pressed)) {
    QAccessible::installFactory(asAlert); // a second time changes nothing
    setAttribute(Qt::WA_ShowWithoutActivating);
    if (blendsWindows())
        setAttribute(Qt::WA_TranslucentBackground);
    else
        setMask(roundedShape());
    setFixedSize(picture::size);
    setFocusPolicy(Qt::StrongFocus);
    setWindowTitle(picture::title());
    setAccessibleName(picture::title());
    setAccessibleDescription(message);
    auto* const button = std::make_unique<CapsuleButton>(*this).release(); // owned by its parent
    connect(button, &QAbstractButton::clicked, this, [this] { press(); });
}

void WarningPanel::present() {
    // As a notification: some compositors give any other window that bypasses them the keyboard.
    // Qt says so to the X server only if the window is there already.
    winId();
    setAttribute(Qt::WA_X11NetWmWindowTypeNotification);
    place();
    // A desktop that is still starting tells only later which part of the screen its bars take.
    if (const QScreen* const screen = QGuiApplication::primaryScreen(); screen != nullptr)
        connect(screen, &QScreen::availableGeometryChanged, this, [this] { place(); });
    show();
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void WarningPanel::place() {
    const QScreen* const screen = QGuiApplication::primaryScreen();
    if (screen == nullptr) return move(0, 0);
    const QRect free = screen->availableGeometry();
    move(free.x() + (free.width() - width()) / 2, free.y() + belowTheTop);
}

void WarningPanel::setCountdown(const Countdown& countdown) {
    const Countdown before = std::exchange(countdown_, countdown);
    if (countdown == before) return;
    update(picture::ringBounds);
    // A window that came since may lie over this one, which no window manager puts in front.
    const bool isSecond = countdown.number != before.number;
    if (isSecond && QGuiApplication::platformName() == "xcb") raise();
}

void WarningPanel::retire() {
    pressed_ = nullptr;
    keyboard_.giveBack(*this);
    hide();
    deleteLater();
}

void WarningPanel::press() const {
    // A copy: the call may end this panel's own.
    if (const auto pressed = pressed_) pressed();
}

void WarningPanel::paintEvent(QPaintEvent* event) {
    if (ground_.isNull() || ground_.devicePixelRatio() != devicePixelRatioF()) renewGround();
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawPixmap(0, 0, ground_);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    if (event->rect().intersects(picture::ringBounds)) picture::paintCountdown(painter, countdown_);
}

void WarningPanel::renewGround() {
    const QSizeF pixels = QSizeF(size()) * devicePixelRatioF();
    ground_ = QPixmap(static_cast<int>(std::ceil(pixels.width())),
                      static_cast<int>(std::ceil(pixels.height())));
    ground_.setDevicePixelRatio(devicePixelRatioF());
    // Where the corners are cut off, no shade of black may be left along the cut.
    const bool isBlended = testAttribute(Qt::WA_TranslucentBackground);
    ground_.fill(isBlended ? QColor(Qt::transparent) : qtColor(brand::navy));
    QPainter painter(&ground_);
    picture::paintStill(painter, message_);
}

void WarningPanel::mousePressEvent(QMouseEvent* event) {
    keyboard_.take(*this);
    setFocus(Qt::MouseFocusReason);
    event->accept();
}

void WarningPanel::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape) return QWidget::keyPressEvent(event);
    if (!event->isAutoRepeat()) press();
}

} // namespace wegslot
