#include "insight/qt/insight_window.h"

#include "ui/qt/brand_qt.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QTimer>

#include <string>
#include <utility>

namespace wegslot::insight {
namespace {

constexpr int margin = 20;
constexpr int gap = 12;
constexpr int listWidth = 330;
constexpr QSize comfortable{1040, 660};
constexpr double closerByPress = 0.5;

ButtonLook plainLook() {
    return {.shape = ButtonLook::Shape::rounded,
            .font = brand::body(13, FontWeight::medium),
            .paddingAcross = 12,
            .paddingDown = 6};
}

ButtonLook signLook() {
    ButtonLook look = plainLook();
    look.font = brand::body(15, FontWeight::bold);
    return look;
}

} // namespace

InsightWindow::InsightWindow(InsightModel& model, const Surroundings& surroundings)
    : model_(model),
      surroundings_(surroundings),
      before_(surroundings.images, signLook()),
      day_(brand::heading(17), Text::Fit::elided, 120),
      after_(surroundings.images, signLook()),
      less_(surroundings.images, signLook()),
      more_(surroundings.images, signLook()),
      all_(surroundings.images, plainLook()),
      timeline_(model, surroundings),
      list_(model, surroundings),
      chosen_(model, surroundings),
      legend_(surroundings),
      sure_(brand::body(13), Text::Fit::wrapped),
      keep_(surroundings.images, plainLook()),
      forget_(surroundings.images, plainLook()),
      emptyTitle_(brand::heading(20), Text::Fit::wrapped),
      emptyText_(brand::body(15), Text::Fit::wrapped) {
    setWindowTitle(QString::fromStdString(translated("Inzicht")));
    layout_.setContentsMargins(margin, margin, margin, margin);
    layout_.addWidget(&whole_, 1);
    layout_.addWidget(&empty_, 1);
    wholeLayout_.setContentsMargins(0, 0, 0, 0);
    wholeLayout_.setSpacing(gap);
    layOutDays();
    layOutTimeline();
    layOutEnd();
    emptyLayout_.addStretch(1);
    emptyLayout_.addWidget(&emptyTitle_);
    emptyLayout_.addWidget(&emptyText_);
    emptyLayout_.addStretch(2);
    for (Text* const text : {&emptyTitle_, &emptyText_})
        text->setAlignment(Qt::AlignCenter);
    model_.onChange([this] { changed(); });
    // A change of the scheme is told before it is stored.
    schemes_ = surroundings_.scheme.onChange([this](Scheme) { changed(); });
    refresh();
    QSize size = comfortable * controlScale();
    if (const QScreen* const screen = QGuiApplication::primaryScreen())
        size = size.boundedTo(screen->availableSize());
    resize(size.expandedTo(minimumSizeHint()));
}

InsightWindow::~InsightWindow() { model_.onChange({}); }

void InsightWindow::layOutDays() {
    days_.setSpacing(8);
    for (PanelButton* const button : {&before_, &after_})
        days_.addWidget(button);
    days_.addSpacing(4);
    days_.addWidget(&day_, 1);
    for (PanelButton* const button : {&less_, &more_, &all_})
        days_.addWidget(button);
    wholeLayout_.addLayout(&days_);
    connect(&before_, &QAbstractButton::clicked, this, [this] { model_.go(-1); });
    connect(&after_, &QAbstractButton::clicked, this, [this] { model_.go(1); });
    connect(&less_, &QAbstractButton::clicked, this, [this] { model_.zoom(1 / closerByPress); });
    connect(&more_, &QAbstractButton::clicked, this, [this] { model_.zoom(closerByPress); });
    connect(&all_, &QAbstractButton::clicked, this, [this] { model_.showAll(); });
}

void InsightWindow::layOutTimeline() {
    middle_.setSpacing(gap);
    middle_.addWidget(&timeline_, 1);
    layOutEvents();
    middle_.addLayout(&events_);
    wholeLayout_.addLayout(&middle_, 1);
}

void InsightWindow::layOutEvents() {
    events_.setSpacing(gap);
    const int width = scaledControl(listWidth);
    for (QWidget* const part : {static_cast<QWidget*>(&list_), static_cast<QWidget*>(&chosen_)})
        part->setFixedWidth(width);
    details_.setMaximumWidth(width);
    events_.addWidget(&list_, 1);
    events_.addWidget(&details_);
    events_.addWidget(&chosen_);
    connect(&details_, &QAbstractButton::clicked, this,
            [this] { model_.listDetails(!model_.listsDetails()); });
}

void InsightWindow::layOutEnd() {
    end_.setSpacing(8);
    end_.addWidget(&legend_, 1);
    end_.addWidget(&sure_, 1);
    end_.addWidget(&keep_);
    end_.addWidget(&forget_);
    wholeLayout_.addLayout(&end_);
    connect(&keep_, &QAbstractButton::clicked, this, [this] { model_.askForgetting(false); });
    connect(&forget_, &QAbstractButton::clicked, this, [this] {
        if (model_.isForgettingAsked()) return model_.forget();
        model_.askForgetting(true);
        // So that a second press on the keyboard forgets nothing.
        refresh();
        keep_.setFocus(Qt::OtherFocusReason);
    });
}

void InsightWindow::open() {
    QWidget::show();
    raise();
    activateWindow();
    timeline_.setFocus(Qt::OtherFocusReason);
}

void InsightWindow::changed() {
    if (std::exchange(isDirty_, true)) return;
    QTimer::singleShot(0, this, [this] { refresh(); });
}

void InsightWindow::showButton(PanelButton& button, const std::string& text, bool isEnabled) {
    const PanelColors colors = surroundings_.colors();
    button.show({.symbol = {}, .text = text, .tooltip = {}, .isEnabled = isEnabled},
                {.ink = colors.text, .ground = colors.control, .focus = colors.focus});
}

void InsightWindow::showDays(const PanelColors& colors) {
    const auto showSign = [this](PanelButton& button, const char* sign, const std::string& name,
                                 bool isEnabled) {
        showButton(button, sign, isEnabled);
        button.setToolTip(QString::fromStdString(name));
        button.setAccessibleName(QString::fromStdString(name));
    };
    const Viewport& viewport = model_.viewport();
    showSign(before_, "‹", translated("Vorige dag"), model_.canGo(-1));
    showSign(after_, "›", translated("Volgende dag"), model_.canGo(1));
    showSign(less_, "−", translated("Uitzoomen"), !viewport.showsAll());
    showSign(more_, "+", translated("Inzoomen"), !viewport.isClosest());
    showButton(all_, translated("Hele dag"), !viewport.showsAll());
    day_.show(model_.isLoading() ? model_.dayName() + " (" + translated("wordt gelezen") + ")"
                                 : model_.dayName(),
              colors.text);
}

void InsightWindow::showEnd(const PanelColors& colors) {
    const bool asks = model_.isForgettingAsked();
    legend_.setVisible(!asks);
    sure_.setVisible(asks);
    keep_.setVisible(asks);
    sure_.show(translated("Alles wissen wat bewaard is? Dat kan niet ongedaan gemaakt worden."),
               colors.text);
    showButton(keep_, translated("Niet wissen"));
    if (!asks) return showButton(forget_, translated("Geschiedenis wissen"));
    forget_.show({.symbol = {}, .text = translated("Alles wissen")},
                 {.ink = brand::navy, .ground = brand::orange, .focus = colors.focus});
}

void InsightWindow::refresh() {
    isDirty_ = false;
    const PanelColors colors = surroundings_.colors();
    const bool isKept = model_.kept().has_value();
    whole_.setVisible(isKept);
    empty_.setVisible(!isKept);
    emptyTitle_.show(translated("Er is nog niets bewaard"), colors.text);
    emptyText_.show(translated("Hier zie je straks hoe sterk elke sleutel te horen was, en waarom "
                               "er wel of niet gelockt werd."),
                    colors.quiet);
    showDays(colors);
    showEnd(colors);
    details_.show({.choice = {},
                   .text = translated("Toon ook kleine veranderingen"),
                   .tooltip = {},
                   .isOn = model_.listsDetails()},
                  colors);
    timeline_.refresh();
    list_.refresh();
    chosen_.refresh();
    update();
}

void InsightWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), qtColor(surroundings_.colors().ground));
}

void InsightWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape) return QWidget::keyPressEvent(event);
    if (model_.isForgettingAsked()) return model_.askForgetting(false);
    hide();
}

} // namespace wegslot::insight
