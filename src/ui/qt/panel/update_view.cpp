#include "ui/qt/panel/update_view.h"

#include "ui/qt/panel/painting.h"

#include <QPainter>

#include <utility>

namespace wegslot {

UpdateOfferView::UpdateOfferView(const PanelContext& context)
    : context_(context),
      symbol_(context.images, QSize(24, 24), 22),
      title_(brand::heading(15, FontWeight::heavy), Text::Fit::wrapped),
      current_(brand::body(11.5), Text::Fit::wrapped),
      install_(context.images, {.shape = ButtonLook::Shape::capsule,
                                .font = brand::heading(13, FontWeight::heavy),
                                .paddingAcross = 14,
                                .paddingDown = 7}),
      spinner_(brand::cream),
      progress_(brand::body(12)),
      notes_(brand::body(12), Text::Fit::wrapped) {
    layout_.setContentsMargins(14, 14, 14, 14);
    layout_.setSpacing(10);
    row_.setSpacing(10);
    texts_.setSpacing(1);
    texts_.addWidget(&title_);
    texts_.addWidget(&current_);
    row_.addWidget(&symbol_);
    row_.addLayout(&texts_, 1);
    row_.addWidget(&install_);
    row_.addWidget(&spinner_);
    row_.addWidget(&progress_);
    layout_.addLayout(&row_);
    layout_.addWidget(&notes_);
    connect(&install_, &QAbstractButton::clicked, this, [this] { context_.model.installUpdate(); });
}

void UpdateOfferView::show(const panel::UpdateOffer& offer) {
    symbol_.show(offer.symbol, {.ink = brand::orange});
    title_.show(offer.title, brand::cream);
    current_.show(offer.current, brand::cream.withOpacity(0.7));
    notes_.show(offer.notes, brand::cream.withOpacity(0.85));
    notes_.setVisible(!offer.notes.empty());
    const auto* const button = std::get_if<panel::Button>(&offer.install);
    if (button != nullptr)
        install_.show(*button,
                      {.ink = brand::navy, .ground = brand::orange, .focus = brand::cream});
    else
        progress_.show(std::get<panel::Busy>(offer.install).text, brand::cream);
    install_.setVisible(button != nullptr);
    spinner_.setVisible(button == nullptr);
    progress_.setVisible(button == nullptr);
}

void UpdateOfferView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painting::fillRounded(painter, rect(), Card::cornerRadius, brand::navy);
    // On the dark panel the ground is navy too.
    if (context_.scheme.get() == Scheme::dark)
        painting::strokeRounded(painter, rect(), Card::cornerRadius, context_.colors().divider, 1);
}

UpdateTroubleView::UpdateTroubleView(const PanelContext& context)
    : context_(context),
      symbol_(context.images, QSize(18, 18), 15),
      text_(brand::body(13), Text::Fit::wrapped),
      retry_(context.images, {.shape = ButtonLook::Shape::rounded,
                              .font = brand::body(12),
                              .paddingAcross = 10,
                              .paddingDown = 4}) {
    layout_.setContentsMargins(0, 0, 0, 0);
    layout_.setSpacing(8);
    row_.setSpacing(6);
    row_.addWidget(&symbol_, 0, Qt::AlignTop);
    row_.addWidget(&text_, 1);
    layout_.addLayout(&row_);
    layout_.addWidget(&retry_, 0, Qt::AlignLeft);
    connect(&retry_, &QAbstractButton::clicked, this, [this] { context_.model.checkForUpdates(); });
}

void UpdateTroubleView::show(const panel::UpdateTrouble& trouble) {
    const PanelColors colors = context_.colors();
    symbol_.show(trouble.symbol, {.ink = trouble.color});
    text_.show(trouble.text, trouble.color);
    retry_.show(trouble.retry,
                {.ink = colors.text, .ground = colors.control, .focus = colors.focus});
}

UpdateView::UpdateView(const PanelContext& context)
    : UpdateView(context, std::make_unique<UpdateTroubleView>(context)) {}

UpdateView::UpdateView(const PanelContext& context, std::unique_ptr<UpdateTroubleView> trouble)
    : offer_(context),
      trouble_(trouble.get()),
      card_(std::move(trouble), context.scheme) {
    layout_.setContentsMargins(0, 0, 0, 0);
    layout_.addWidget(&offer_);
    layout_.addWidget(&card_);
}

void UpdateView::show(const panel::UpdateBanner& banner) {
    const auto* const offer = std::get_if<panel::UpdateOffer>(&banner);
    const auto* const trouble = std::get_if<panel::UpdateTrouble>(&banner);
    if (offer != nullptr) offer_.show(*offer);
    if (trouble != nullptr) trouble_->show(*trouble);
    offer_.setVisible(offer != nullptr);
    card_.setVisible(trouble != nullptr);
    setVisible(offer != nullptr || trouble != nullptr);
}

} // namespace wegslot
