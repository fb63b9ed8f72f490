#include "ui/qt/panel/login_offer_view.h"

#include <utility>

namespace wegslot {
namespace {

ButtonLook answerLook() {
    return {.shape = ButtonLook::Shape::rounded,
            .font = brand::body(12),
            .paddingAcross = 10,
            .paddingDown = 4};
}

} // namespace

LoginOfferView::LoginOfferView(const PanelContext& context)
    : context_(context),
      text_(brand::body(13), Text::Fit::wrapped),
      accept_(context.images, answerLook()),
      decline_(context.images, answerLook()) {
    layout_.setContentsMargins(0, 0, 0, 0);
    layout_.setSpacing(8);
    buttons_.setSpacing(8);
    buttons_.addWidget(&accept_);
    buttons_.addWidget(&decline_);
    buttons_.addStretch(1);
    layout_.addWidget(&text_);
    layout_.addLayout(&buttons_);
    PanelModel& model = context_.model;
    connect(&accept_, &QAbstractButton::clicked, this, [&model] { model.acceptLogin(); });
    connect(&decline_, &QAbstractButton::clicked, this, [&model] { model.declineLogin(); });
}

void LoginOfferView::show(const panel::LoginOffer& offer) {
    const PanelColors colors = context_.colors();
    text_.show(offer.text, colors.text);
    if (offer.accept)
        accept_.show(*offer.accept,
                     {.ink = brand::navy, .ground = brand::orange, .focus = colors.focus});
    accept_.setVisible(offer.accept.has_value());
    decline_.show(offer.decline,
                  {.ink = colors.text, .ground = colors.control, .focus = colors.focus});
}

LoginOfferCard::LoginOfferCard(const PanelContext& context)
    : LoginOfferCard(context, std::make_unique<LoginOfferView>(context)) {}

LoginOfferCard::LoginOfferCard(const PanelContext& context, std::unique_ptr<LoginOfferView> offer)
    : offer_(offer.get()),
      card_(std::move(offer), context.scheme) {
    layout_.setContentsMargins(0, 0, 0, 0);
    layout_.addWidget(&card_);
}

void LoginOfferCard::show(const std::optional<panel::LoginOffer>& offer) {
    if (offer) offer_->show(*offer);
    setVisible(offer.has_value());
}

} // namespace wegslot
