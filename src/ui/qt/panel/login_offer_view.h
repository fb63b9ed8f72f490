// What is asked once below the keys: whether Wegslot is to start at login.
#pragma once

#include "ui/qt/card.h"
#include "ui/qt/panel/panel_button.h"
#include "ui/qt/panel/panel_context.h"
#include "ui/qt/panel/text.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <memory>
#include <optional>

namespace wegslot {

class LoginOfferView final : public QWidget {
public:
    explicit LoginOfferView(const PanelContext& context);

    void show(const panel::LoginOffer& offer);
    using QWidget::show;

private:
    PanelContext context_;
    Text text_;
    PanelButton accept_;
    PanelButton decline_;
    QVBoxLayout layout_{this};
    QHBoxLayout buttons_;
};

/// On a card of its own; not there most of the time.
class LoginOfferCard final : public QWidget {
public:
    explicit LoginOfferCard(const PanelContext& context);

    void show(const std::optional<panel::LoginOffer>& offer);
    using QWidget::show;

private:
    LoginOfferCard(const PanelContext& context, std::unique_ptr<LoginOfferView> offer);

    LoginOfferView* offer_; ///< the card's
    Card card_;
    QVBoxLayout layout_{this};
};

} // namespace wegslot
