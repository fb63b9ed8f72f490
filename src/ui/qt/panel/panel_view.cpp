#include "ui/qt/panel/panel_view.h"

#include "ui/qt/panel/painting.h"

#include <QPainter>

#include <algorithm>
#include <vector>

namespace wegslot {
namespace {

constexpr int padding = 16;

/// What can have the keyboard, as the layouts have it: from top to bottom, from left to right. Qt's
/// own order is that in which widgets came to be.
void collectControls(const QLayout& layout, std::vector<QWidget*>& controls) {
    for (int i = 0; i < layout.count(); ++i) {
        QLayoutItem* const item = layout.itemAt(i);
        if (const QLayout* const inner = item->layout()) collectControls(*inner, controls);
        QWidget* const widget = item->widget();
        if (widget == nullptr || widget->isHidden()) continue;
        if (widget->isEnabled() && (widget->focusPolicy() & Qt::TabFocus) != 0)
            controls.push_back(widget);
        const auto* const scroll = dynamic_cast<QScrollArea*>(widget);
        const QWidget* const outer = scroll == nullptr ? widget : scroll->widget();
        if (outer != nullptr && outer->layout() != nullptr)
            collectControls(*outer->layout(), controls);
    }
}

} // namespace

PanelView::PanelView(const PanelContext& context, int height)
    : context_(context),
      header_(context),
      update_(context),
      keys_(context),
      loginOffer_(context),
      nearby_(context, &PanelModel::openNearby),
      settings_(context, &PanelModel::openSettings),
      footer_(context) {
    setFixedSize(static_cast<int>(PanelContent::width), height);
    // The scroll bar stands in the padding on the right.
    partsLayout_.setContentsMargins(padding, padding, padding - ThinScrollBar::thickness, padding);
    partsLayout_.setSpacing(14);
    for (QWidget* const part :
         std::initializer_list<QWidget*>{&update_, &keys_, &loginOffer_, &nearby_, &settings_})
        partsLayout_.addWidget(part);
    partsLayout_.addStretch(1);
    scroll_.setFrameShape(QFrame::NoFrame);
    scroll_.setWidgetResizable(true);
    scroll_.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll_.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    scroll_.setVerticalScrollBar(&scrollBar_);
    scroll_.setFocusPolicy(Qt::NoFocus);
    scroll_.setWidget(&parts_);
    scroll_.viewport()->setAutoFillBackground(false);
    parts_.setAutoFillBackground(false);

    layout_.setContentsMargins(0, 0, 0, 0);
    layout_.setSpacing(0);
    layout_.addWidget(&header_);
    layout_.addWidget(&upperDivider_);
    layout_.addWidget(&scroll_, 1);
    layout_.addWidget(&lowerDivider_);
    layout_.addWidget(&footer_);
}

void PanelView::show(const PanelContent& content) {
    const PanelColors colors = context_.colors();
    ground_ = content.ground;
    upperDivider_.show(colors.divider);
    lowerDivider_.show(colors.divider);
    scrollBar_.show(colors.line);
    header_.show(content.header);
    update_.show(content.banner);
    keys_.show(content.keys);
    loginOffer_.show(content.loginOffer);
    nearby_.show(content.nearby);
    settings_.show(content.settings);
    footer_.show(content.footer);
    update();
}

void PanelView::setCornerRadius(double radius) {
    cornerRadius_ = radius;
    update();
}

void PanelView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing, cornerRadius_ > 0);
    painting::fillRounded(painter, rect(), cornerRadius_, ground_);
}

bool PanelView::moveFocus(bool next) {
    std::vector<QWidget*> controls;
    collectControls(layout_, controls);
    if (controls.empty()) return false;
    const auto at = std::ranges::find(controls, window()->focusWidget());
    const auto count = static_cast<std::ptrdiff_t>(controls.size());
    const auto step = next ? std::ptrdiff_t{1} : count - 1;
    const auto from = at == controls.end() ? (next ? count - 1 : 0) : at - controls.begin();
    QWidget* const control = controls[static_cast<std::size_t>((from + step) % count)];
    control->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    if (parts_.isAncestorOf(control)) scroll_.ensureWidgetVisible(control, 0, padding);
    return true;
}

} // namespace wegslot
