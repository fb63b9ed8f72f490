// What is chosen in the list: when it was to the second, why it was, and what its user thinks of
// it.
#pragma once

#include "insight/insight_model.h"
#include "insight/qt/surroundings.h"
#include "ui/qt/panel/panel_button.h"
#include "ui/qt/panel/text.h"

#include <QHBoxLayout>
#include <QScrollArea>
#include <QVBoxLayout>
#include <QWidget>

namespace wegslot::insight {

class ChosenView final : public QWidget {
public:
    ChosenView(InsightModel& model, const Surroundings& surroundings);

    void refresh();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void showButton(PanelButton& button, const char* text, bool isOn);

    InsightModel& model_;
    Surroundings surroundings_;
    QVBoxLayout layout_{this};
    Text text_;
    Text answer_;
    PanelButton why_;
    PanelButton unjust_;
    PanelButton late_;
};

} // namespace wegslot::insight
