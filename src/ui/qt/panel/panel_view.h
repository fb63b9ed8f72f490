// The whole panel as a widget of fixed width: head, what scrolls, foot. Draws what it is given.
#pragma once

#include "ui/qt/card.h"
#include "ui/qt/panel/footer_view.h"
#include "ui/qt/panel/header_view.h"
#include "ui/qt/panel/keys_view.h"
#include "ui/qt/panel/login_offer_view.h"
#include "ui/qt/panel/nearby_view.h"
#include "ui/qt/panel/panel_context.h"
#include "ui/qt/panel/settings_view.h"
#include "ui/qt/panel/update_view.h"

#include <QScrollArea>

namespace wegslot {

class PanelView final : public QWidget {
public:
    /// `height` in pixels.
    PanelView(const PanelContext& context, int height);

    void show(const PanelContent& content);
    using QWidget::show;

    /// Round corners are left to what is behind it.
    void setCornerRadius(double radius);

    /// Gives the keyboard to the next control in the order of reading, or to the one before.
    bool moveFocus(bool next);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool focusNextPrevChild(bool next) override { return moveFocus(next); }

private:
    PanelContext context_;
    Color ground_;
    double cornerRadius_ = 0;
    HeaderView header_;
    Divider upperDivider_;
    QScrollArea scroll_; ///< before what it would otherwise end as its own
    CardGround parts_;
    QVBoxLayout partsLayout_{&parts_};
    ThinScrollBar scrollBar_;
    UpdateView update_;
    KeysView keys_;
    LoginOfferCard loginOffer_;
    NearbyView nearby_;
    SettingsView settings_;
    Divider lowerDivider_;
    FooterView footer_;
    QVBoxLayout layout_{this};
};

} // namespace wegslot
