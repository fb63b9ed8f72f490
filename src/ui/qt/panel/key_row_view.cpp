#include "ui/qt/panel/key_row_view.h"

#include "ui/qt/panel/overhang.h"
#include "ui/qt/panel/painting.h"

#include <QPainter>

namespace wegslot {
namespace {

constexpr int overhang = 4; ///< how much of the padding around it the row uses

// The two places of the note, in the line of the title and in the column.
constexpr int behindTheName = 2;
constexpr int belowTheTitle = 1;

} // namespace

BadgeView::BadgeView() : text_(brand::heading(10.5, FontWeight::heavy)) {
    layout_.setContentsMargins(7, 2, 7, 2);
    layout_.addWidget(&text_);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void BadgeView::show(const panel::Badge& badge) {
    text_.show(badge.text, badge.color);
    ground_ = badge.ground();
    update();
}

void BadgeView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painting::fillRounded(painter, rect(), height() / 2.0, ground_);
}

KeyRowView::KeyRowView(const PanelContext& context)
    : context_(context),
      symbol_(context.images, QSize(18, 18), 17),
      name_(brand::heading(14), Text::Fit::elided),
      note_(brand::body(10.5), Text::Fit::elided),
      remove_(context.images, {.shape = ButtonLook::Shape::bare,
                               .font = brand::body(13),
                               .paddingAcross = 3,
                               .paddingDown = 3,
                               .symbolSide = 16}),
      trouble_(brand::body(11), Text::Fit::wrapped),
      signal_(brand::body(11)),
      link_(brand::body(11), Text::Fit::elided),
      limit_(brand::body(11)),
      bar_(context.clock),
      far_(brand::body(10.5)),
      near_(brand::body(10.5)),
      fromHere_(context.images, {.shape = ButtonLook::Shape::link, .font = brand::body(11)}),
      justSet_(brand::body(11), Text::Fit::wrapped) {
    setContentsMargins(overhang, 0, overhang, 0);
    layout_.setContentsMargins(0, 0, 0, 0);
    layout_.setSpacing(8);
    titleLine_.setSpacing(6);
    titleLine_.addWidget(&symbol_);
    titleLine_.addWidget(&name_);
    titleLine_.addStretch(1);
    titleLine_.addWidget(&badge_);
    addOverhanging(titleLine_, *this, remove_, {0, 0, overhang, 0}); // the cross in line
    signalLine_.setSpacing(8);
    signalLine_.addWidget(&signal_);
    const bool hasRoom = textScale() <= 1; // for all three
    if (hasRoom) signalLine_.addWidget(&link_);
    signalLine_.addStretch(1);
    signalLine_.addWidget(&limit_);
    thresholdLine_.setSpacing(8);
    thresholdLine_.addWidget(&far_);
    thresholdLine_.addWidget(&threshold_, 1);
    thresholdLine_.addWidget(&near_);
    layout_.addLayout(&titleLine_);
    layout_.addWidget(&note_);
    layout_.addWidget(&trouble_);
    layout_.addLayout(&signalLine_);
    if (!hasRoom) layout_.addWidget(&link_);
    addOverhanging(layout_, *this, bar_, SignalBarView::beyond);
    layout_.addLayout(&thresholdLine_);
    fromHereLine_.setSpacing(8);
    fromHereLine_.addWidget(&fromHere_, 0, Qt::AlignLeft | Qt::AlignTop);
    fromHereLine_.addWidget(&justSet_, 1);
    layout_.addLayout(&fromHereLine_);
    for (Text* const last : {&limit_, &near_})
        last->setAlignment(Qt::AlignRight);
    connectControls();
}

void KeyRowView::connectControls() {
    PanelModel& model = context_.model;
    connect(&remove_, &QAbstractButton::clicked, this, [this, &model] { model.removeKey(id_); });
    connect(&fromHere_, &QAbstractButton::clicked, this,
            [this, &model] { model.setFromHere(id_); });
    connect(&threshold_, &QSlider::valueChanged, this, [this, &model] {
        model.moveThreshold(id_, threshold_.threshold());
        if (!threshold_.isSliderDown()) model.releaseThreshold(); // it was a key
    });
    connect(&threshold_, &QSlider::sliderReleased, this, [&model] { model.releaseThreshold(); });
}

void KeyRowView::show(const panel::KeyRow& row) {
    const PanelColors colors = context_.colors();
    id_ = row.id;
    symbol_.show(row.symbol, {.ink = row.symbolColor,
                              .outline = colors.outlineOf(row.symbolColor, colors.card)});
    name_.show(row.name, colors.text);
    note_.show(row.note, colors.quiet);
    note_.setVisible(!row.note.empty());
    badge_.show(row.badge);
    remove_.show(row.remove, {.ink = colors.quiet, .focus = colors.focus});
    remove_.setAccessibleName(QString::fromStdString(row.remove.tooltip + ": " + row.name));
    trouble_.show(row.trouble, row.troubleColor);
    trouble_.setVisible(!row.trouble.empty());
    signal_.show(row.signal, colors.quiet);
    link_.show(row.link, colors.quiet);
    link_.setVisible(!row.link.empty());
    limit_.show(row.limit, colors.quiet);
    bar_.show(row.bar, colors.outlineOf(SignalBar::markerColor, colors.card));
    far_.show(row.farEnd, colors.quiet);
    threshold_.show(row.threshold, row.name + ": " + row.limit, colors);
    near_.show(row.nearEnd, colors.quiet);
    if (row.setFromHere)
        fromHere_.show(*row.setFromHere, {.ink = colors.link, .focus = colors.focus});
    fromHere_.setVisible(row.setFromHere.has_value());
    justSet_.show(row.justSet, colors.quiet);
    justSet_.setVisible(!row.justSet.empty());
    placeNote();
}

void KeyRowView::resizeEvent(QResizeEvent*) { placeNote(); }

/// Behind the name where both are read whole there, on a line of its own otherwise.
void KeyRowView::placeNote() {
    if (note_.isHidden()) return;
    const bool isBehind = titleLine_.indexOf(&note_) >= 0;
    titleLine_.invalidate(); // one of its texts may be another now
    int needed = titleLine_.sizeHint().width();
    if (!isBehind) needed += titleLine_.spacing() + note_.sizeHint().width();
    const bool fits = needed <= contentsRect().width();
    if (fits == isBehind) return;
    if (fits) {
        layout_.removeWidget(&note_);
        titleLine_.insertWidget(behindTheName, &note_);
    } else {
        titleLine_.removeWidget(&note_);
        layout_.insertWidget(belowTheTitle, &note_);
    }
}

} // namespace wegslot
