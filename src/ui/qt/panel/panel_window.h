// The panel on the screen, in its frame: made when it is first opened, placed under the icon that
// was clicked, gone with Escape or a click elsewhere. Redraws once in a turn of the event loop,
// however often something changes, and not at all while it is closed.
#pragma once

#include "ui/panel_model.h"
#include "ui/qt/panel/panel_view.h"
#include "ui/qt/symbol_images.h"
#include "ui/qt/window_frame.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPoint>
#include <QVBoxLayout>
#include <QWidget>

#include <optional>

namespace wegslot {

/// How the window system treats the panel.
enum class PanelHost {
    popup,   ///< X11: a click anywhere else reaches us, and closes it
    window,  ///< Wayland: an ordinary window, which closes when another one is used
    standing ///< closed by Escape and the icon only: who watches a demo clicks elsewhere too
};

class PanelWindow final : public QWidget {
public:
    PanelWindow(PanelModel::Objects objects, const SymbolImages& images, PanelHost host);
    ~PanelWindow() override;

    /// How high a panel is on the main screen, in pixels.
    [[nodiscard]] static int heightOnScreen();

    /// `at`: where on the screen the icon was clicked; without, in the corner where icons are.
    void open(const std::optional<QPoint>& at);

    /// As a click on the icon does: opens it, or closes what is open.
    void toggle(const std::optional<QPoint>& at);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    [[nodiscard]] std::function<void()> closeFor(PanelHost host);
    void frame();
    void changed();
    void refresh();
    void place(const std::optional<QPoint>& at);

    PanelHost host_;
    std::optional<WindowFrame> frame_;
    PanelModel model_;
    PanelContext context_;
    PanelView view_;
    QVBoxLayout layout_{this};
    bool isDirty_ = false; ///< a redraw is under way
    /// As it was last told, which is a little later than it changes.
    Qt::ApplicationState applicationState_ = QGuiApplication::applicationState();
    QElapsedTimer closed_; ///< since it was last closed
};

} // namespace wegslot
