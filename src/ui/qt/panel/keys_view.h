// The keys in the panel, each on a card, and the rule that combines them.
#pragma once

#include "ui/qt/card.h"
#include "ui/qt/panel/key_place_view.h"
#include "ui/qt/panel/menu_button.h"
#include "ui/qt/section_title.h"

#include <memory>
#include <vector>

namespace wegslot {

class KeysView final : public QWidget {
public:
    explicit KeysView(const PanelContext& context);

    void show(const panel::KeysSection& section);
    using QWidget::show;

private:
    struct Row {
        Uuid id;
        KeyPlaceView* view; ///< the card's
        std::unique_ptr<Card> card;
    };

    KeysView(const PanelContext& context, std::unique_ptr<Text> instruction);
    void fitRows(const std::vector<Uuid>& ids);
    [[nodiscard]] Row rowOf(const Uuid& id);
    void showRule(const std::optional<panel::RulePicker>& rule);

    PanelContext context_;
    SectionTitle title_{""};
    Text* instruction_; ///< the card's
    Card instructionCard_;
    std::vector<Row> rows_;
    QWidget rule_;
    Text ruleLabel_;
    MenuButton rulePicker_;
    std::vector<LockRule> rules_;
    QVBoxLayout layout_{this};
    QVBoxLayout rowLayout_;
    QHBoxLayout ruleLayout_;
};

} // namespace wegslot
