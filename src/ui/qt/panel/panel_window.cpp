#include "ui/qt/panel/panel_window.h"

#include "ui/contrast.h"
#include "ui/qt/compositor.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <utility>

namespace wegslot {
namespace {

constexpr int distance = 8; ///< from the edges of the screen

Qt::WindowFlags flagsFor(PanelHost host) {
    const Qt::WindowFlags kind = host == PanelHost::popup ? Qt::Popup : Qt::Tool;
    return kind | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint;
}

} // namespace

PanelWindow::PanelWindow(PanelModel::Objects objects, const SymbolImages& images, PanelHost host)
    : QWidget(nullptr, flagsFor(host)),
      host_(host),
      model_(objects, PanelModel::Expand::asNeeded, [this] { changed(); }),
      context_{model_, images, objects.scheme, objects.clock, closeFor(host)},
      view_(context_, heightOnScreen()) {
    setWindowTitle(QStringLiteral("Wegslot"));
    layout_.addWidget(&view_);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this,
            [this](Qt::ApplicationState state) { applicationState_ = state; });
    refresh();
}

PanelWindow::~PanelWindow() { hide(); }

int PanelWindow::heightOnScreen() {
    const QScreen* const screen = QGuiApplication::primaryScreen();
    const auto visible =
        screen == nullptr ? std::nullopt : std::optional<double>(screen->availableSize().height());
    return static_cast<int>(std::floor(panelHeight(visible)));
}

/// A click elsewhere does not reach us where the panel is an ordinary window, unless on another
/// one.
std::function<void()> PanelWindow::closeFor(PanelHost host) {
    if (host != PanelHost::window) return {};
    return [this] { hide(); };
}

void PanelWindow::toggle(const std::optional<QPoint>& at) {
    // The press on the icon has closed it already, being a press elsewhere.
    constexpr qint64 sameClick = 250; // ms
    const bool justClosed = closed_.isValid() && closed_.elapsed() < sameClick;
    if (isVisible() || justClosed) {
        hide();
        return closed_.invalidate();
    }
    open(at);
}

void PanelWindow::open(const std::optional<QPoint>& at) {
    view_.setFixedHeight(heightOnScreen());
    frame();
    adjustSize();
    place(at);
    show();
    raise();
    activateWindow();
    // On none of the controls, so that no stray key changes anything.
    setAttribute(Qt::WA_KeyboardFocusChange, false);
    setFocus(Qt::PopupFocusReason);
}

/// A compositor comes and goes with the desktop's settings; a window is translucent from its
/// making.
void PanelWindow::frame() {
    const WindowFrame frame(blendsWindows());
    if (frame_ == frame) return;
    frame_ = frame;
    destroy();
    setAttribute(Qt::WA_TranslucentBackground, frame.isBlended());
    layout_.setContentsMargins(frame.margins());
    setFixedWidth(frame.margins().left() + view_.width() + frame.margins().right());
    view_.setCornerRadius(frame.cornerRadius());
}

void PanelWindow::place(const std::optional<QPoint>& at) {
    const QScreen* const clicked = at ? QGuiApplication::screenAt(*at) : nullptr;
    const QScreen* const screen = clicked != nullptr ? clicked : QGuiApplication::primaryScreen();
    if (screen == nullptr) return;
    const QRect free =
        screen->availableGeometry().adjusted(distance, distance, -distance, -distance);
    // Icons are at the top on some desktops and at the bottom on others, at the right on all.
    const QPoint anchor = clicked != nullptr ? *at : QPoint(free.right(), screen->geometry().top());
    const bool isBelow = anchor.y() < screen->geometry().center().y();
    const QSize size = view_.size(); // the frame lies around it, over the edge of the screen too
    const int left = anchor.x() - size.width() / 2;
    const int top = isBelow ? anchor.y() + distance : anchor.y() - distance - size.height();
    const QPoint corner(
        std::clamp(left, free.left(), std::max(free.left(), free.right() + 1 - size.width())),
        std::clamp(top, free.top(), std::max(free.top(), free.bottom() + 1 - size.height())));
    move(corner - QPoint(frame_->margins().left(), frame_->margins().top()));
}

void PanelWindow::paintEvent(QPaintEvent*) {
    const PanelColors colors = context_.colors();
    QPainter painter(this);
    frame_->paint(painter, size(), colors.ground, over(colors.line, colors.ground));
}

void PanelWindow::mousePressEvent(QMouseEvent* event) {
    // The shadow is nothing that one could press: it is a press elsewhere.
    if (!view_.geometry().contains(event->position().toPoint())) hide();
}

void PanelWindow::showEvent(QShowEvent*) {
    model_.appear();
    refresh();
}

void PanelWindow::hideEvent(QHideEvent*) {
    closed_.start();
    model_.disappear();
}

void PanelWindow::closeEvent(QCloseEvent* event) {
    // Qt closes all popups while it goes over to the application's not being the active one. That
    // it does a tenth of a second after a panel has gone, when there may be another, which has the
    // keyboard all the same.
    event->setAccepted(QGuiApplication::applicationState() == applicationState_);
}

void PanelWindow::changed() {
    if (!isVisible() || std::exchange(isDirty_, true)) return;
    QTimer::singleShot(0, this, [this] {
        isDirty_ = false;
        if (isVisible()) refresh();
    });
}

void PanelWindow::refresh() { view_.show(model_.content()); }

void PanelWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape) return QWidget::keyPressEvent(event);
    hide();
}

bool PanelWindow::focusNextPrevChild(bool next) { return view_.moveFocus(next); }

void PanelWindow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::ActivationChange || host_ != PanelHost::window) return;
    // A menu of its own takes the activation for a while on some systems.
    if (!isActiveWindow() && QApplication::activePopupWidget() == nullptr) hide();
}

} // namespace wegslot
