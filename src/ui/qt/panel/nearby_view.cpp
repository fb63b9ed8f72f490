#include "ui/qt/panel/nearby_view.h"

#include <utility>

namespace wegslot {
namespace {

constexpr int spacing = 6;
constexpr int deviceSymbol = 20;
constexpr int betweenParts = 8;

} // namespace

NearbyRowView::NearbyRowView(const PanelContext& context)
    : context_(context),
      symbol_(context.images, QSize(deviceSymbol, deviceSymbol), 17),
      name_(brand::body(13), Text::Fit::elided),
      detail_(brand::body(10.5), Text::Fit::elided),
      signal_(brand::body(11)),
      choose_(context.images, {.shape = ButtonLook::Shape::rounded,
                               .font = brand::body(12),
                               .paddingAcross = 10,
                               .paddingDown = 3}),
      obstacle_(brand::body(11), Text::Fit::wrapped) {
    layout_.setContentsMargins(0, 0, 0, 0);
    layout_.setSpacing(2);
    line_.setSpacing(betweenParts);
    texts_.setSpacing(0);
    texts_.addWidget(&name_);
    texts_.addWidget(&detail_);
    signal_.setAlignment(Qt::AlignRight);
    signal_.setMinimumWidth(static_cast<int>(56 * textScale()));
    line_.addWidget(&symbol_);
    line_.addLayout(&texts_, 1);
    line_.addWidget(&signal_);
    line_.addWidget(&choose_);
    layout_.addLayout(&line_);
    obstacleLine_.setContentsMargins(deviceSymbol + betweenParts, 0, 0, 0); // below the name
    obstacleLine_.addWidget(&obstacle_);
    layout_.addLayout(&obstacleLine_);
    connect(&choose_, &QAbstractButton::clicked, this, [this] {
        if (hasObstacle_) return context_.model.couple();
        context_.model.choose(id_);
    });
}

void NearbyRowView::show(const panel::NearbyPlace& place) {
    const PanelColors colors = context_.colors();
    id_ = place.id;
    for (QWidget* const part : std::initializer_list<QWidget*>{&symbol_, &signal_, &choose_})
        part->setVisible(place.row.has_value());
    hasObstacle_ = place.row && !place.row->obstacle.empty();
    obstacle_.setVisible(hasObstacle_);
    if (!place.row) {
        name_.show(" ", colors.text);
        detail_.show(" ", colors.quiet);
        setFixedHeight(height());
        return;
    }
    setMinimumHeight(0);
    setMaximumHeight(QWIDGETSIZE_MAX);
    symbol_.show(place.row->symbol, {.ink = place.row->symbolColor});
    name_.show(place.row->name, colors.text);
    detail_.show(place.row->detail, colors.quiet);
    signal_.show(place.row->signal, colors.quiet);
    obstacle_.show(place.row->obstacle, colors.quiet);
    choose_.show(place.row->choose,
                 {.ink = colors.text, .ground = colors.control, .focus = colors.focus});
    choose_.setAccessibleName(
        QString::fromStdString(place.row->choose.text + ": " + place.row->name));
}

NearbyListView::NearbyListView(const PanelContext& context)
    : context_(context),
      placeholder_(brand::body(13)) {
    layout_.setContentsMargins(0, 0, 0, 0);
    layout_.setSpacing(spacing);
    layout_.addWidget(&placeholder_);
}

void NearbyListView::show(const panel::NearbyList& list) {
    placeholder_.show(list.placeholder, context_.colors().quiet);
    placeholder_.setVisible(!list.placeholder.empty());
    while (rows_.size() > list.places.size())
        rows_.pop_back();
    while (rows_.size() < list.places.size()) {
        rows_.push_back(std::make_unique<NearbyRowView>(context_));
        layout_.addWidget(rows_.back().get());
    }
    for (std::size_t i = 0; i < rows_.size(); ++i)
        rows_[i]->show(list.places[i]);
}

NearbyContentView::NearbyContentView(const PanelContext& context)
    : NearbyContentView(context, std::make_unique<NearbyListView>(context)) {}

NearbyContentView::NearbyContentView(const PanelContext& context,
                                     std::unique_ptr<NearbyListView> nameless)
    : context_(context),
      explanation_(brand::body(11.5), Text::Fit::wrapped),
      named_(context),
      namelessList_(nameless.get()),
      nameless_(DisclosureButton::Rank::group, spacing, std::move(nameless)),
      othersExplanation_(brand::body(11.5), Text::Fit::wrapped),
      others_(context) {
    layout_.setContentsMargins(0, 0, 0, 0);
    layout_.setSpacing(spacing);
    for (QWidget* const part :
         std::initializer_list<QWidget*>{&explanation_, &named_, &nameless_, &divider_,
                                         &showOthers_, &othersExplanation_, &others_})
        layout_.addWidget(part);
    connect(&nameless_.button(), &QAbstractButton::clicked, this,
            [this](bool open) { context_.model.openNameless(open); });
    connect(&showOthers_, &QAbstractButton::clicked, this,
            [this](bool on) { context_.model.set(panel::Choice::showOtherDevices, on); });
}

void NearbyContentView::show(const panel::NearbyGroup& group) {
    const PanelColors colors = context_.colors();
    explanation_.show(group.explanation, colors.quiet);
    named_.show(group.named);
    if (group.nameless) {
        nameless_.show(group.nameless->label, group.nameless->isOpen, colors);
        namelessList_->show(group.nameless->list);
    }
    nameless_.setVisible(group.nameless.has_value());
    divider_.show(colors.divider);
    showOthers_.show(group.showOthers, colors);
    if (group.others) {
        othersExplanation_.show(group.others->explanation, colors.quiet);
        others_.show(group.others->list);
    }
    othersExplanation_.setVisible(group.others.has_value());
    others_.setVisible(group.others.has_value());
}

void NearbyContentView::enterEvent(QEnterEvent*) { context_.model.holdLists(); }

void NearbyContentView::leaveEvent(QEvent*) { context_.model.releaseLists(); }

void NearbyContentView::hideEvent(QHideEvent*) { context_.model.releaseLists(); }

} // namespace wegslot
