// The panel's word on updates: an offer with its button, or why the last one failed.
#pragma once

#include "ui/qt/card.h"
#include "ui/qt/panel/panel_button.h"
#include "ui/qt/panel/panel_context.h"
#include "ui/qt/panel/small_parts.h"
#include "ui/qt/panel/spinner.h"
#include "ui/qt/panel/text.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace wegslot {

/// On its own dark ground in either scheme.
class UpdateOfferView final : public QWidget {
public:
    explicit UpdateOfferView(const PanelContext& context);

    void show(const panel::UpdateOffer& offer);
    using QWidget::show;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    PanelContext context_;
    SymbolView symbol_;
    Text title_;
    Text current_;
    PanelButton install_;
    Spinner spinner_;
    Text progress_;
    Text notes_;
    QVBoxLayout layout_{this};
    QHBoxLayout row_;
    QVBoxLayout texts_;
};

/// What stands on the card of a failure.
class UpdateTroubleView final : public QWidget {
public:
    explicit UpdateTroubleView(const PanelContext& context);

    void show(const panel::UpdateTrouble& trouble);
    using QWidget::show;

private:
    PanelContext context_;
    SymbolView symbol_;
    Text text_;
    PanelButton retry_;
    QVBoxLayout layout_{this};
    QHBoxLayout row_;
};

class UpdateView final : public QWidget {
public:
    explicit UpdateView(const PanelContext& context);

    void show(const panel::UpdateBanner& banner);
    using QWidget::show;

private:
    UpdateOfferView offer_;
    UpdateTroubleView* trouble_; ///< the card's
    Card card_;
    QVBoxLayout layout_{this};

    UpdateView(const PanelContext& context, std::unique_ptr<UpdateTroubleView> trouble);
};

} // namespace wegslot
