#include "ui/qt/coupling/coupling_window.h"

#include "ui/qt/brand_qt.h"
#include "ui/symbols.h"

#include <QAccessible>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace wegslot {

using coupling::Action;
using coupling::Choice;

namespace {

constexpr int margin = 28;
constexpr int windowWidth = 460;
constexpr int longestName = 60;
constexpr int tile = 44;         ///< around the symbol
constexpr int leastHeight = 300; ///< so that it keeps its size from most steps to the next
constexpr std::size_t mostInARow = 3;

ButtonLook choiceLook() {
    return {.shape = ButtonLook::Shape::rounded,
            .font = brand::body(14, FontWeight::medium),
            .paddingAcross = 14,
            .paddingDown = 8};
}

bool isMain(const Choice& choice) { return choice.isMain; }

/// Where Escape leads: the way that changes least.
bool isWayBack(const Choice& choice) {
    return choice.action == Action::back || choice.action == Action::close;
}

} // namespace

CouplingWindow::CouplingWindow(coupling::Coupling& coupling, Surroundings surroundings)
    : coupling_(coupling),
      surroundings_(surroundings),
      layout_(this),
      symbol_(surroundings.images, QSize(scaledControl(tile), scaledControl(tile)),
              scaledControl(tile) * 0.55, 12),
      title_(brand::heading(20), Text::Fit::wrapped),
      text_(brand::body(15), Text::Fit::wrapped),
      code_(brand::heading(40)),
      detail_(brand::body(13), Text::Fit::wrapped),
      countdown_(brand::body(13, FontWeight::medium)) {
    setWindowTitle(QString::fromStdString(translated("Apparaat koppelen")));
    setFixedWidth(scaledControl(windowWidth));
    layout_.setContentsMargins(margin, margin, margin, margin);
    layout_.setSpacing(12);
    code_.setAlignment(Qt::AlignCenter);
    heading_.setSpacing(14);
    heading_.addWidget(&symbol_);
    heading_.addWidget(&title_, 1);
    layout_.addLayout(&heading_);
    name_.setMaxLength(longestName);
    name_.setPlaceholderText(QString::fromStdString(translated("Naam van het apparaat")));
    identity_.setEchoMode(QLineEdit::Password);
    identity_.setInputMethodHints(Qt::ImhHiddenText | Qt::ImhSensitiveData);
    identity_.setPlaceholderText(
        QString::fromStdString(translated("Plak hier de identiteit (IRK)")));
    for (QLineEdit* const field : {&name_, &identity_}) {
        field->setAccessibleName(field->placeholderText());
        connect(field, &QLineEdit::returnPressed, this, [this] {
            if (PanelButton* const button = buttonOf(isMain)) button->click();
        });
    }
    for (QWidget* const part :
         std::initializer_list<QWidget*>{&text_, &code_, &name_, &identity_, &detail_})
        layout_.addWidget(part);
    layout_.addStretch(1);
    layout_.addWidget(&countdown_);
    choices_.setSpacing(8);
    layout_.addLayout(&choices_);
    steps_ = coupling.step().follow([this](const coupling::Step& step) { stepChanged(step); });
    schemes_ = surroundings_.scheme.onChange([this](Scheme) {
        // It is told before it is stored.
        QTimer::singleShot(0, this, [this] { show(page_); });
    });
}

void CouplingWindow::open() {
    QWidget::show();
    raise();
    activateWindow();
}

void CouplingWindow::stepChanged(const coupling::Step& step) {
    if (std::holds_alternative<coupling::step::Closed>(step)) {
        counting_.reset();
        return hide();
    }
    step_ = step;
    page_ = coupling_.page(step);
    makeChoices();
    show(page_);
    // What nobody looked at yet is told whole, to whom it is read out.
    QAccessibleEvent changed(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&changed);
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

/// Made anew for each page: what had the keyboard is gone, and no key that was meant for the page
/// before does anything here.
void CouplingWindow::makeChoices() {
    while (QLayoutItem* const item = choices_.takeAt(0))
        delete item;
    for (auto& button : buttons_) {
        button->hide();
        button.release()->deleteLater(); // it may be the one that was pressed
    }
    buttons_.clear();
    // The main one is the last in a row, and the first in a column.
    const bool isColumn = page_.choices.size() > mostInARow;
    choices_.setDirection(isColumn ? QBoxLayout::BottomToTop : QBoxLayout::LeftToRight);
    if (!isColumn) choices_.addStretch(1);
    for (const Choice& choice : page_.choices) {
        buttons_.push_back(std::make_unique<PanelButton>(surroundings_.images, choiceLook()));
        PanelButton& button = *buttons_.back();
        if (isColumn) button.setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        choices_.addWidget(&button);
        button.QWidget::show(); // it takes room from now on, not from the next turn on
        connect(&button, &QAbstractButton::clicked, this, [this, choice] { press(choice); });
    }
    setFocus(Qt::OtherFocusReason);
    if (page_.asksForIdentity) name_.setFocus(Qt::OtherFocusReason);
}

void CouplingWindow::press(const Choice& choice) {
    if (!page_.asksForIdentity || choice.action != Action::paste)
        return coupling_.act(choice.action);
    // Nothing of it stays in this window's own memory; what the toolkit and the clipboard hold of
    // it meanwhile is theirs.
    QString typed = identity_.text();
    identity_.clear();
    QByteArray pasted = typed.toUtf8();
    typed.fill(u'\0');
    coupling_.paste(name_.text().trimmed().toStdString(),
                    std::string_view(pasted.constData(), static_cast<std::size_t>(pasted.size())));
    pasted.fill('\0');
}

void CouplingWindow::showFields() {
    const PanelColors colors = this->colors();
    for (QLineEdit* const field : {&name_, &identity_}) {
        QPalette inks = field->palette();
        inks.setColor(QPalette::Base, qtColor(colors.card));
        inks.setColor(QPalette::Text, qtColor(colors.text));
        inks.setColor(QPalette::PlaceholderText, qtColor(colors.quiet));
        field->setPalette(inks);
        field->setFont(qtFont(scaledFont(brand::body(14))).font);
        field->setVisible(page_.asksForIdentity);
    }
    if (page_.asksForIdentity) return;
    name_.clear();
    identity_.clear();
}

void CouplingWindow::show(const coupling::Page& page) {
    const PanelColors colors = this->colors();
    const auto fill = [](Text& part, const std::string& text, const Color& color) {
        part.show(text, color);
        part.setVisible(!text.empty());
    };
    showSymbol();
    showFields();
    fill(title_, page.title.translated(), colors.text);
    fill(text_, page.text.translated(), colors.text);
    fill(code_, page.code.value_or(""), colors.text);
    fill(detail_, page.detail.translated(), colors.quiet);
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        const Choice& choice = page.choices[i];
        const panel::Button button{.symbol = {}, .text = choice.label.translated()};
        if (choice.isMain)
            buttons_[i]->show(button,
                              {.ink = brand::navy, .ground = brand::orange, .focus = colors.focus});
        else
            buttons_[i]->show(
                button, {.ink = colors.text, .ground = colors.control, .focus = colors.focus});
    }
    setAccessibleName(title_.text());
    setAccessibleDescription(text_.text() + " " + code_.text() + " " + detail_.text());
    counting_.reset();
    if (page.until)
        counting_ =
            surroundings_.scheduler.every(std::chrono::seconds{1}, [this] { showCountdown(); });
    showCountdown();
    // What has come or gone counts at once.
    layout_.invalidate();
    layout_.activate();
    setFixedHeight(std::max(leastHeight, layout_.totalHeightForWidth(width())));
    update();
}

void CouplingWindow::showSymbol() {
    const bool isTrouble = std::holds_alternative<coupling::step::Failed>(step_) ||
                           std::holds_alternative<coupling::step::Hindered>(step_);
    const auto* const judged = std::get_if<coupling::step::Judged>(&step_);
    const bool isSilent = judged != nullptr &&
                          std::holds_alternative<coupling::audibility::Silent>(judged->audibility);
    const bool listens = std::holds_alternative<coupling::step::ListeningLit>(step_) ||
                         std::holds_alternative<coupling::step::ListeningAway>(step_);
    const std::string_view symbol = isTrouble || isSilent                       ? symbols::warning
                                    : listens                                   ? symbols::radio
                                    : coupling_.kind() == coupling::Kind::watch ? symbols::watch
                                                                                : symbols::phone;
    const Color ground = isTrouble || isSilent ? brand::orange
                         : judged != nullptr   ? brand::success
                                               : brand::lila;
    symbol_.show(std::string(symbol), {.ink = brand::navy, .ground = ground});
}

void CouplingWindow::showCountdown() {
    std::string left;
    if (page_.until) {
        const auto seconds = std::max<long long>(
            0, std::chrono::ceil<std::chrono::seconds>(*page_.until - surroundings_.clock.now())
                   .count());
        const std::string rest = std::to_string(seconds % 60);
        left = translated("Nog %1",
                          {std::to_string(seconds / 60) + (rest.size() < 2 ? ":0" : ":") + rest});
    }
    countdown_.show(left, colors().quiet);
}

PanelButton* CouplingWindow::buttonOf(bool (*isIt)(const Choice&)) const {
    const auto choice = std::ranges::find_if(page_.choices, isIt);
    if (choice == page_.choices.end()) return nullptr;
    return buttons_[static_cast<std::size_t>(choice - page_.choices.begin())].get();
}

void CouplingWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), qtColor(colors().ground));
}

void CouplingWindow::keyPressEvent(QKeyEvent* event) {
    // A press that goes on from the page before is no answer to this one.
    if (event->isAutoRepeat()) return;
    if (event->key() == Qt::Key_Escape) {
        if (PanelButton* const button = buttonOf(isWayBack)) button->click();
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (PanelButton* const button = buttonOf(isMain)) button->click();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void CouplingWindow::closeEvent(QCloseEvent* event) {
    coupling_.act(Action::close);
    event->accept();
}

} // namespace wegslot
