// A section of the panel that can be folded: its heading, and what it opens.
#pragma once

#include "ui/qt/panel/disclosure.h"
#include "ui/qt/panel/panel_context.h"

#include <QVBoxLayout>
#include <QWidget>

#include <memory>
#include <utility>

namespace wegslot {

/// `Content` shows a `Group`, which has a title and says whether it is open.
template <typename Content, typename Group>
class SectionView final : public QWidget {
public:
    /// `open`: what a press on the heading asks of the model.
    SectionView(const PanelContext& context, void (PanelModel::*open)(bool))
        : SectionView(context, open, std::make_unique<Content>(context)) {}

    void show(const Group& group) {
        content_->show(group);
        disclosure_.show(group.title, group.isOpen, context_.colors());
    }
    using QWidget::show;

private:
    static constexpr int spacing = 6;

    SectionView(const PanelContext& context, void (PanelModel::*open)(bool),
                std::unique_ptr<Content> content)
        : context_(context),
          content_(content.get()),
          disclosure_(DisclosureButton::Rank::section, spacing, std::move(content)) {
        layout_.setContentsMargins(0, 0, 0, 0);
        layout_.addWidget(&disclosure_);
        connect(&disclosure_.button(), &QAbstractButton::clicked, this,
                [this, open](bool isOpen) { (context_.model.*open)(isOpen); });
    }

    PanelContext context_;
    Content* content_; ///< the disclosure's
    Disclosure disclosure_;
    QVBoxLayout layout_{this};
};

} // namespace wegslot
