#include "ui/qt/panel/header_view.h"

#include "base/translation.h"
#include "ui/symbols.h"

namespace wegslot {

HeaderView::HeaderView(const PanelContext& context)
    : context_(context),
      tile_(context.images, QSize(40, 40), 22, 11),
      name_(brand::heading(17, FontWeight::heavy)),
      status_(brand::body(12), Text::Fit::elided),
      close_(context.images, {.shape = ButtonLook::Shape::bare,
                              .font = brand::body(13),
                              .paddingAcross = 3,
                              .paddingDown = 3,
                              .symbolSide = 18}) {
    // What is last stands in line with what is below: within it the cross is 5 from the edge, the
    // switch 2.
    layout_.setContentsMargins(16, 16, 16 - (context_.close ? 5 : 2), 12);
    layout_.setSpacing(12);
    texts_.setSpacing(2);
    line_.setSpacing(4); // and one around the dot
    line_.addWidget(&dot_);
    line_.addWidget(&status_, 1);
    texts_.addWidget(&name_);
    texts_.addLayout(&line_);
    layout_.addWidget(&tile_);
    layout_.addLayout(&texts_, 1);
    layout_.addWidget(&enabled_);
    layout_.addWidget(&close_);
    close_.setVisible(static_cast<bool>(context_.close));
    connect(&close_, &QAbstractButton::clicked, this, [this] { context_.close(); });
    connect(&enabled_, &QAbstractButton::clicked, this,
            [this](bool on) { context_.model.set(panel::Choice::enabled, on); });
}

void HeaderView::show(const panel::Header& header) {
    const PanelColors colors = context_.colors();
    tile_.show(header.symbol, {.ink = header.symbolColor,
                               .ground = brand::navy,
                               .outline = colors.outlineOf(brand::navy, colors.ground)});
    name_.show(header.name, header.nameColor);
    dot_.show(header.dot, colors.outlineOf(header.dot, colors.ground));
    status_.show(header.status, colors.quiet);
    enabled_.show(header.enabled, colors);
    close_.show({.symbol = std::string(symbols::remove), .text = {}},
                {.ink = colors.quiet, .focus = colors.focus});
    close_.setAccessibleName(QString::fromStdString(translated("Sluiten")));
}

} // namespace wegslot
