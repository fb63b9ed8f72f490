// The window in which a phone is coupled: one thing to do at a time, for as long as it takes. Shows
// the page of the step, and hands on what is pressed.
#pragma once

#include "base/clock.h"
#include "base/scheduler.h"
#include "coupling/coupling.h"
#include "ui/panel_colors.h"
#include "ui/qt/panel/panel_button.h"
#include "ui/qt/panel/small_parts.h"
#include "ui/qt/panel/text.h"
#include "ui/qt/symbol_images.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QVBoxLayout>
#include <QWidget>

#include <memory>
#include <vector>

namespace wegslot {

class CouplingWindow final : public QWidget {
public:
    struct Surroundings {
        const SymbolImages& images;
        const Observable<Scheme>& scheme;
        const Clock& clock;
        Scheduler& scheduler;
    };

    /// All must outlive it. It hides when the coupling is closed; being closed, it closes that.
    CouplingWindow(coupling::Coupling& coupling, Surroundings surroundings);

    /// In front of whatever is there, with the keyboard.
    void open();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void stepChanged(const coupling::Step& step);
    void show(const coupling::Page& page);
    void showSymbol();
    void showFields();
    void press(const coupling::Choice& choice);
    void showCountdown();
    void makeChoices();
    [[nodiscard]] PanelColors colors() const { return panelColors(surroundings_.scheme.get()); }
    [[nodiscard]] PanelButton* buttonOf(bool (*isIt)(const coupling::Choice&)) const;

    coupling::Coupling& coupling_;
    Surroundings surroundings_;
    coupling::Step step_;
    coupling::Page page_;
    QVBoxLayout layout_;
    QHBoxLayout heading_;
    SymbolView symbol_;
    Text title_;
    Text text_;
    Text code_;
    QLineEdit name_;     ///< of what is pasted
    QLineEdit identity_; ///< that is pasted; not shown
    Text detail_;
    Text countdown_;
    QBoxLayout choices_{QBoxLayout::LeftToRight}; ///< or below each other, where they are many
    std::vector<std::unique_ptr<PanelButton>> buttons_; ///< of the choices, in their order
    Timer counting_;
    Subscription steps_;
    Subscription schemes_;
};

} // namespace wegslot
