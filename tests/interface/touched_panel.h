// The panel under hands: pressed, dragged and typed on, without a screen. What comes of it is read
// from the core.
#pragma once

#include "tests/interface/picture_stage.h"
#include "tests/support/panel_world.h"
#include "tests/support/program.h"
#include "ui/qt/panel/panel_window.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QAction>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QWheelEvent>

#include <optional>

#include <string>
#include <vector>

namespace wegslot {

class TouchedPanel : public testing::Test, protected PanelWorld {
protected:
    void open(const std::vector<KeyDevice>& keys = {}) {
        window.emplace(run(keys), images, PanelHost::window);
        window->open({});
        turn();
    }

    static void turn() {
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
    }

    /// A second passes, with this heard in it.
    void hear(unsigned number, int rssi, std::string_view name) {
        world.hearApple(number, rssi, 0x10, name);
        world.pass(std::chrono::seconds{1});
        turn();
    }

    /// The control that a screen reader calls so; null when it cannot be seen.
    template <typename Kind>
    Kind* find(const std::string& name) {
        for (Kind* const control : window->findChildren<Kind*>())
            if (control->accessibleName().toStdString() == name && control->isVisible())
                return control;
        return nullptr;
    }

    void press(const std::string& name) {
        auto* const button = find<QAbstractButton>(name);
        ASSERT_NE(button, nullptr) << name;
        const QPointF at(button->width() / 2.0, button->height() / 2.0);
        mouse(*button, QEvent::MouseButtonPress, at);
        mouse(*button, QEvent::MouseButtonRelease, at);
        turn();
    }

    static void mouse(QWidget& widget, QEvent::Type type, QPointF at) {
        const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        const auto held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, widget.mapToGlobal(at), button, held, Qt::NoModifier);
        QCoreApplication::sendEvent(&widget, &event);
    }

    static void type(QWidget& widget, int key) {
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, Qt::NoModifier);
            QCoreApplication::sendEvent(&widget, &event);
        }
        turn();
    }

    /// A turn of the wheel over `widget`, handed on to what is around it until somebody takes it,
    /// as one of the window system's is.
    static void wheel(QWidget& widget, int turned) {
        const QPointF at(widget.width() / 2.0, widget.height() / 2.0);
        for (QWidget* part = &widget; part != nullptr; part = part->parentWidget()) {
            QWheelEvent event(widget.mapTo(part, at), widget.mapToGlobal(at), {}, {0, turned},
                              Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QCoreApplication::sendEvent(part, &event);
            if (event.isAccepted()) break;
        }
        turn();
    }

    static void typeText(QWidget& widget, const QString& text) {
        for (const QChar sign : text) {
            QKeyEvent event(QEvent::KeyPress, sign.unicode(), Qt::NoModifier, QString(sign));
            QCoreApplication::sendEvent(&widget, &event);
        }
        turn();
    }

    /// Where something is being typed; null when nothing is.
    QLineEdit* typingField() {
        for (QLineEdit* const field : window->findChildren<QLineEdit*>())
            if (field->isVisible()) return field;
        return nullptr;
    }

    /// Presses on a stepper's text.
    QLineEdit* beginTyping(const std::string& text) {
        window->activateWindow();
        turn();
        for (QLabel* const label : window->findChildren<QLabel*>()) {
            if (label->text().toStdString() != text || !label->isVisible()) continue;
            QWidget& stepper = *label->parentWidget();
            mouse(stepper, QEvent::MouseButtonPress, QPointF(label->geometry().center()));
            turn();
        }
        return typingField();
    }

    /// Chooses an entry of a button's menu.
    void choose(const std::string& name, const std::string& entry) {
        auto* const button = find<QPushButton>(name);
        ASSERT_NE(button, nullptr) << name;
        ASSERT_NE(button->menu(), nullptr) << name;
        for (QAction* const action : button->menu()->actions())
            if (action->text().toStdString() == entry) {
                action->trigger();
                return turn();
            }
        FAIL() << entry;
    }

    [[nodiscard]] bool shows(const std::string& text) {
        for (const QLabel* const label : window->findChildren<QLabel*>())
            if (label->text().toStdString() == text && label->isVisible()) return true;
        return false;
    }

    [[nodiscard]] double threshold() { return world.settings().keys.get().at(0).threshold.value; }

    /// Where the knob is drawn for a threshold.
    static QPointF knobAt(const QSlider& slider, double dBm) {
        const double fraction = (dBm + 95) / 55;
        return {8 + fraction * (slider.width() - 16), slider.height() / 2.0};
    }

    PictureStage stage;
    SymbolImages images;
    std::optional<PanelWindow> window;
};

} // namespace wegslot
