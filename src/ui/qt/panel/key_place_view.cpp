#include "ui/qt/panel/key_place_view.h"

#include <variant>

namespace wegslot {

RemovedRowView::RemovedRowView(const PanelContext& context)
    : context_(context),
      name_(brand::heading(14), Text::Fit::elided, 60),
      text_(brand::body(11)),
      putBack_(context.images, {.shape = ButtonLook::Shape::rounded,
                                .font = brand::body(12),
                                .paddingAcross = 10,
                                .paddingDown = 3}) {
    layout_.setContentsMargins(0, 0, 0, 0);
    layout_.setSpacing(8);
    layout_.addWidget(&name_);
    layout_.addWidget(&text_);
    layout_.addStretch(1);
    layout_.addWidget(&putBack_);
    connect(&putBack_, &QAbstractButton::clicked, this, [this] { context_.model.putBack(id_); });
}

void RemovedRowView::show(const panel::RemovedRow& row) {
    const PanelColors colors = context_.colors();
    id_ = row.id;
    name_.show(row.name, colors.quiet);
    text_.show(row.text, colors.quiet);
    putBack_.show(row.putBack,
                  {.ink = colors.text, .ground = colors.control, .focus = colors.focus});
    putBack_.setAccessibleName(QString::fromStdString(row.putBack.text + ": " + row.name));
}

KeyPlaceView::KeyPlaceView(const PanelContext& context) : row_(context), removed_(context) {
    layout_.setContentsMargins(0, 0, 0, 0);
    layout_.addWidget(&row_);
    layout_.addWidget(&removed_);
}

void KeyPlaceView::show(const panel::KeyPlace& place) {
    const auto* const removed = std::get_if<panel::RemovedRow>(&place);
    const bool isTurning = removed_.isHidden() == (removed != nullptr);
    // Who removes by the keyboard can take back by it at once; hiding what has it would move it on.
    const bool hadKeyboard = isTurning && isAncestorOf(window()->focusWidget());
    if (removed != nullptr) {
        removed_.show(*removed);
    } else {
        row_.show(std::get<panel::KeyRow>(place));
    }
    removed_.setVisible(removed != nullptr);
    if (hadKeyboard) (removed != nullptr ? removed_.putBack() : row_.remove()).setFocus();
    row_.setVisible(removed == nullptr);
}

} // namespace wegslot
