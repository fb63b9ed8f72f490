#include "ui/qt/panel/keys_view.h"

#include <algorithm>
#include <utility>

namespace wegslot {
namespace {

const Uuid& idOf(const panel::KeyPlace& place) {
    return std::visit([](const auto& row) -> const Uuid& { return row.id; }, place);
}

} // namespace

KeysView::KeysView(const PanelContext& context)
    : KeysView(context, std::make_unique<Text>(brand::body(13), Text::Fit::wrapped)) {}

KeysView::KeysView(const PanelContext& context, std::unique_ptr<Text> instruction)
    : context_(context),
      instruction_(instruction.get()),
      instructionCard_(std::move(instruction), context.scheme),
      ruleLabel_(brand::body(13)),
      rulePicker_(MenuButton::Frame::drawn, [this](int number) {
          context_.model.setRule(rules_[static_cast<std::size_t>(number)]);
      }) {
    layout_.setContentsMargins(0, 0, 0, 0);
    layout_.setSpacing(8);
    rowLayout_.setSpacing(10);
    ruleLayout_.setContentsMargins(0, 0, 0, 0);
    ruleLayout_.setSpacing(8);
    ruleLayout_.addWidget(&ruleLabel_);
    ruleLayout_.addWidget(&rulePicker_);
    ruleLayout_.addStretch(1);
    rule_.setLayout(&ruleLayout_);
    layout_.addWidget(&title_);
    layout_.addLayout(&rowLayout_);
    layout_.addWidget(&instructionCard_);
    layout_.addWidget(&rule_);
}

void KeysView::show(const panel::KeysSection& section) {
    title_.setTitle(section.title);
    instruction_->show(section.instruction, context_.colors().text);
    instructionCard_.setVisible(!section.instruction.empty());
    std::vector<Uuid> ids;
    for (const panel::KeyPlace& place : section.rows)
        ids.push_back(idOf(place));
    fitRows(ids);
    for (std::size_t i = 0; i < rows_.size(); ++i)
        rows_[i].view->show(section.rows[i]);
    showRule(section.rule);
}

/// A card stays its key's: a slider that is dragged does not become another's when a key above it
/// comes or goes.
void KeysView::fitRows(const std::vector<Uuid>& ids) {
    if (std::ranges::equal(rows_, ids, {}, &Row::id)) return;
    std::vector<Row> rows;
    for (const Uuid& id : ids)
        rows.push_back(rowOf(id));
    for (const Row& row : rows)
        rowLayout_.removeWidget(row.card.get());
    for (const Row& row : rows)
        rowLayout_.addWidget(row.card.get());
    rows_ = std::move(rows);
}

KeysView::Row KeysView::rowOf(const Uuid& id) {
    const auto found = std::ranges::find(rows_, id, &Row::id);
    if (found != rows_.end()) {
        Row row = std::move(*found);
        rows_.erase(found);
        return row;
    }
    auto view = std::make_unique<KeyPlaceView>(context_);
    KeyPlaceView* const shown = view.get();
    return {id, shown, std::make_unique<Card>(std::move(view), context_.scheme)};
}

void KeysView::showRule(const std::optional<panel::RulePicker>& rule) {
    rule_.setVisible(rule.has_value());
    if (!rule) return;
    const PanelColors colors = context_.colors();
    std::vector<std::string> texts;
    rules_.clear();
    int selected = 0;
    for (const auto& option : rule->options) {
        if (option.rule == rule->selected) selected = static_cast<int>(rules_.size());
        rules_.push_back(option.rule);
        texts.push_back(option.text);
    }
    ruleLabel_.show(rule->label, colors.text);
    const std::string& text = texts[static_cast<std::size_t>(selected)];
    rulePicker_.show(text, rule->label + " " + text, texts, selected, colors);
}

} // namespace wegslot
