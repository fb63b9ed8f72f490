#include "insight/qt/chosen_view.h"

#include "ui/qt/brand_qt.h"
#include "ui/qt/card.h"
#include "ui/qt/panel/painting.h"

#include <QAccessible>
#include <QPainter>

#include <initializer_list>
#include <string>

namespace wegslot::insight {
namespace {

ButtonLook opinionLook() {
    return {.shape = ButtonLook::Shape::rounded,
            .font = brand::body(13, FontWeight::medium),
            .paddingAcross = 12,
            .paddingDown = 6};
}

} // namespace

ChosenView::ChosenView(InsightModel& model, const Surroundings& surroundings)
    : model_(model),
      surroundings_(surroundings),
      text_(brand::body(13, FontWeight::semibold), Text::Fit::wrapped),
      answer_(brand::body(13), Text::Fit::wrapped),
      why_(surroundings.images, opinionLook()),
      unjust_(surroundings.images, opinionLook()),
      late_(surroundings.images, opinionLook()) {
    layout_.setContentsMargins(Card::padding, Card::padding, Card::padding, Card::padding);
    layout_.setSpacing(8);
    for (QWidget* const part :
         std::initializer_list<QWidget*>{&text_, &answer_, &why_, &unjust_, &late_})
        layout_.addWidget(part);
    layout_.setAlignment(&why_, Qt::AlignLeft);
    layout_.setAlignment(&unjust_, Qt::AlignLeft);
    layout_.setAlignment(&late_, Qt::AlignLeft);
    connect(&why_, &QAbstractButton::clicked, this, [this] {
        if (model_.chosen()) model_.why(*model_.chosen());
    });
    for (PanelButton* const button : {&unjust_, &late_}) {
        button->setCheckable(true);
        const auto opinion =
            button == &unjust_ ? InsightModel::Opinion::unjust : InsightModel::Opinion::late;
        connect(button, &QAbstractButton::clicked, this, [this, button, opinion] {
            button->toggle(); // what is shown is what the model says
            model_.judge(opinion);
        });
    }
}

void ChosenView::showButton(PanelButton& button, const char* text, bool isOn) {
    const PanelColors colors = surroundings_.colors();
    PanelButton::Colors inks{.ink = colors.text, .ground = colors.control, .focus = colors.focus};
    if (isOn) {
        inks.ink = brand::navy;
        inks.ground = brand::orange;
    }
    button.show({.symbol = {}, .text = text}, inks);
    if (button.isCheckable()) button.setChecked(isOn);
}

void ChosenView::refresh() {
    const PanelColors colors = surroundings_.colors();
    const Event* const event = model_.chosenEvent();
    const bool isDeed = event != nullptr && event->isDeed;
    if (event != nullptr)
        text_.show(model_.zone().exactTime(event->wall) + " " + event->text.translated(),
                   colors.text);
    text_.setVisible(event != nullptr);
    const std::string answer = model_.answer();
    const bool isNew = !answer.empty() && answer_.text().toStdString() != answer;
    if (event == nullptr)
        answer_.show(translated("Kies een gebeurtenis om te zien waarom ze er was."), colors.quiet);
    else
        answer_.show(answer, colors.text);
    answer_.setVisible(!answer_.text().isEmpty());
    showButton(why_, translated("Waarom?").c_str(), false);
    why_.setVisible(event != nullptr && InsightModel::canBeAsked(*event) && answer.empty());
    using Opinion = InsightModel::Opinion;
    showButton(unjust_, translated("Dit was onterecht").c_str(),
               isDeed && event->opinion == Opinion::unjust);
    showButton(late_, translated("Dit was te laat").c_str(),
               isDeed && event->opinion == Opinion::late);
    unjust_.setVisible(isDeed);
    late_.setVisible(isDeed);
    update();
    if (!isNew) return;
    // It was asked for, so it is read out.
    answer_.setAccessibleName(answer_.text());
    QAccessibleEvent alert(&answer_, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void ChosenView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painting::fillRounded(painter, rect(), Card::cornerRadius, surroundings_.colors().card);
}

} // namespace wegslot::insight
