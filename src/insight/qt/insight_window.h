// The window "Inzicht": a day of what was heard and what came of it. Shows its model and hands on
// what is pressed.
#pragma once

#include "insight/insight_model.h"
#include "insight/qt/chosen_view.h"
#include "insight/qt/event_list.h"
#include "insight/qt/legend_view.h"
#include "insight/qt/surroundings.h"
#include "insight/qt/timeline_view.h"
#include "ui/qt/panel/panel_button.h"
#include "ui/qt/panel/text.h"
#include "ui/qt/panel/toggles.h"

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <QWidget>

namespace wegslot::insight {

class InsightWindow final : public QWidget {
public:
    /// All must outlive it. Takes over to be told when the model changes.
    InsightWindow(InsightModel& model, const Surroundings& surroundings);
    ~InsightWindow() override;

    /// In front of whatever is there, with the keyboard.
    void open();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void layOutDays();
    void layOutTimeline();
    void layOutEvents();
    void layOutEnd();
    void changed();
    void refresh();
    void showDays(const PanelColors& colors);
    void showEnd(const PanelColors& colors);
    void showButton(PanelButton& button, const std::string& text, bool isEnabled = true);

    InsightModel& model_;
    Surroundings surroundings_;
    QVBoxLayout layout_{this};

    QWidget whole_; ///< what there is to see; not there where nothing is kept
    QVBoxLayout wholeLayout_{&whole_};
    QHBoxLayout days_;
    PanelButton before_;
    Text day_;
    PanelButton after_;
    PanelButton less_;
    PanelButton more_;
    PanelButton all_;
    QHBoxLayout middle_;
    TimelineView timeline_;
    QVBoxLayout events_;
    EventCard list_;
    CheckBox details_;
    ChosenView chosen_;
    QHBoxLayout end_;
    LegendView legend_;
    Text sure_;
    PanelButton keep_;
    PanelButton forget_;

    QWidget empty_;
    QVBoxLayout emptyLayout_{&empty_};
    Text emptyTitle_;
    Text emptyText_;

    bool isDirty_ = false; ///< a redraw is under way
    Subscription schemes_;
};

} // namespace wegslot::insight
