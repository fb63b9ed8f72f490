// The window "Inzicht" under hands, on the keyboard and read out, without a screen.

#include "tests/interface/insight_stage.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QWheelEvent>

using namespace wegslot;
using namespace wegslot::insight;
using namespace std::chrono_literals;

namespace {

struct InsightWindowTest : testing::Test {
    using Texts = std::vector<std::string>;

    PictureStage application;
    InsightStage stage;
    InsightModel& model = stage.model;
    TimelineView& timeline = stage.part<TimelineView>();
    EventList& list = stage.part<EventList>();

    void mouse(QEvent::Type type, QPointF at) {
        const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        const auto held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, timeline.mapToGlobal(at), button, held, Qt::NoModifier);
        QCoreApplication::sendEvent(&timeline, &event);
        InsightStage::turn();
    }

    void wheel(double x, QPoint turned, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        const QPointF at(x, timeline.height() / 2.0);
        QWheelEvent event(at, timeline.mapToGlobal(at), {}, turned, Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(&timeline, &event);
        InsightStage::turn();
    }

    /// Where a time of the day is drawn.
    [[nodiscard]] double placeOf(TimePoint wall) const {
        const Span& visible = model.viewport().visible();
        constexpr double padding = 10;
        const TimelinePainter painter(model, stage.images, panelColors(Scheme::light),
                                      timeline.size() - QSize(20, 20), 1);
        EXPECT_TRUE(visible.contains(wall));
        return painter.placeOf(wall) + padding;
    }

    [[nodiscard]] static Texts readRows(QAbstractItemView& view) {
        Texts texts;
        QAccessibleInterface* const list = QAccessible::queryAccessibleInterface(&view);
        for (int i = 0; i < list->childCount(); ++i)
            texts.push_back(list->child(i)->text(QAccessible::Name).toStdString());
        return texts;
    }
};

} // namespace

TEST_F(InsightWindowTest, AScreenReaderIsToldEveryRowOfTheList) {
    EXPECT_EQ(
        readRows(list),
        (Texts{"00:00 Niets bekend tot 08:50",
               "08:50 Wacht tot je sleutel in de buurt is",
               "08:56 Je bent in de buurt",
               "12:04 Waarschuwing: iPhone van Anna, Apple Watch en Bandje zijn buiten bereik",
               "12:04 Gelockt: iPhone van Anna, Apple Watch en Bandje zijn buiten bereik",
               "12:04 Lock bevestigd",
               "12:40 Scherm ontgrendeld",
               "12:41 Je bent in de buurt",
               "14:00 Drempel van Bandje: -65 dBm, was -70",
               "14:58 Waarschuwing: iPhone van Anna, Apple Watch en Bandje zijn buiten bereik",
               "14:58 Gelockt: iPhone van Anna, Apple Watch en Bandje zijn buiten bereik "
               "(onterecht)",
               "14:58 Lock bevestigd",
               "14:59 Scherm ontgrendeld",
               "14:59 Je bent in de buurt",
               "16:10 Pauze gevraagd, pauze tot 16:25",
               "16:24 Niets bekend tot 16:50",
               "16:50 Je bent in de buurt",
               "17:30 Waarschuwing: iPhone van Anna, Apple Watch en Bandje zijn buiten bereik",
               "17:30 Gelockt: iPhone van Anna, Apple Watch en Bandje zijn buiten bereik",
               "17:30 Lock bevestigd",
               "17:44 Hierna is niets bekend"}));
}

TEST_F(InsightWindowTest, AScreenReaderIsToldWhatTheTimelineDraws) {
    QAccessibleInterface* const read = QAccessible::queryAccessibleInterface(&timeline);
    EXPECT_EQ(read->text(QAccessible::Name), "Tijdlijn");
    const std::string told = read->text(QAccessible::Description).toStdString();
    EXPECT_TRUE(told.starts_with("Van 00:00 tot 00:00. iPhone van Anna: ")) << told;
    EXPECT_NE(told.find("drempel -75 dBm. Apple Watch: "), std::string::npos) << told;
    InsightStage::type(timeline, Qt::Key_End);
    EXPECT_TRUE(read->text(QAccessible::Description).endsWith(". 17:44 Hierna is niets bekend"));
}

TEST_F(InsightWindowTest, EverythingIsReachedByTab) {
    stage.model.choose(stage.eventNamed("17:30 Gelockt"));
    stage.model.zoom(0.5);
    InsightStage::turn();
    timeline.setFocus();
    Texts reached;
    for (int i = 0; i < 30; ++i) {
        QWidget* const focused = stage.window->focusWidget();
        const std::string name = focused->accessibleName().toStdString();
        if (!reached.empty() && name == reached.front()) break;
        reached.push_back(name);
        InsightStage::type(*focused, Qt::Key_Tab);
    }
    EXPECT_EQ(reached,
              (Texts{"Tijdlijn", "Gebeurtenissen", "Toon ook kleine veranderingen", "Waarom?",
                     "Dit was onterecht", "Dit was te laat", "Geschiedenis wissen", "Vorige dag",
                     "Uitzoomen", "Inzoomen", "Hele dag"}));
}

TEST_F(InsightWindowTest, ArrowsWalkFromEventToEventInTheTimelineAndTheListFollows) {
    InsightStage::type(timeline, Qt::Key_Right);
    EXPECT_EQ(stage.chosen(), "00:00 Niets bekend tot 08:50");
    InsightStage::type(timeline, Qt::Key_Right);
    EXPECT_EQ(list.currentIndex().row(), 1);
    InsightStage::type(timeline, Qt::Key_End);
    EXPECT_EQ(list.currentIndex().row(), list.model()->rowCount() - 1);
    InsightStage::type(timeline, Qt::Key_Left);
    EXPECT_EQ(stage.chosen(), "17:30 Lock bevestigd");
    InsightStage::type(timeline, Qt::Key_Home);
    EXPECT_EQ(list.currentIndex().row(), 0);
}

TEST_F(InsightWindowTest, ArrowsInTheListChooseToo) {
    list.setFocus();
    InsightStage::type(list, Qt::Key_Down);
    EXPECT_EQ(stage.chosen(), "00:00 Niets bekend tot 08:50");
    InsightStage::type(list, Qt::Key_End);
    EXPECT_EQ(stage.chosen(), "17:44 Hierna is niets bekend");
    InsightStage::type(list, Qt::Key_Up);
    EXPECT_EQ(stage.chosen(), "17:30 Lock bevestigd");
}

TEST_F(InsightWindowTest, KeysZoomAndMove) {
    InsightStage::type(timeline, Qt::Key_Plus);
    EXPECT_EQ(model.viewport().visible(), (Span{MadeDay::midnight + 6h, MadeDay::midnight + 18h}));
    InsightStage::type(timeline, Qt::Key_PageDown);
    EXPECT_EQ(model.viewport().visible(), (Span{MadeDay::midnight + 12h, MadeDay::midnight + 24h}));
    InsightStage::type(timeline, Qt::Key_PageUp);
    EXPECT_EQ(model.viewport().visible().from, MadeDay::midnight + 2h + 24min);
    InsightStage::type(timeline, Qt::Key_Equal);
    EXPECT_EQ(model.viewport().visible().length(), 6h);
    InsightStage::type(timeline, Qt::Key_Minus);
    EXPECT_EQ(model.viewport().visible().length(), 12h);
    InsightStage::type(timeline, Qt::Key_0);
    EXPECT_TRUE(model.viewport().showsAll());
}

TEST_F(InsightWindowTest, TheWheelZoomsAboutThePointerAndMovesSideways) {
    const TimePoint noon = MadeDay::midnight + 12h;
    const double x = placeOf(noon);
    for (int i = 0; i < 10; ++i)
        wheel(x, {0, 120});
    EXPECT_LT(model.viewport().visible().length(), 3h);
    EXPECT_NEAR(placeOf(noon), x, 0.01);
    const Span before = model.viewport().visible();
    wheel(x, {0, -120}, Qt::ShiftModifier);
    EXPECT_NEAR(static_cast<double>((model.viewport().visible().from - before.from).count()),
                static_cast<double>(before.length().count()) / 10, 1);
    wheel(x, {120, 0});
    EXPECT_EQ(model.viewport().visible(), before);
    for (int i = 0; i < 20; ++i)
        wheel(x, {0, -120});
    EXPECT_TRUE(model.viewport().showsAll());
}

TEST_F(InsightWindowTest, DraggingMovesAndChoosesNothing) {
    model.zoom(0.25, MadeDay::midnight + 12h);
    InsightStage::turn();
    const TimePoint held = MadeDay::midnight + 12h + 4min;
    const double x = placeOf(held);
    mouse(QEvent::MouseButtonPress, {x, 50});
    mouse(QEvent::MouseMove, {x + 60, 50});
    mouse(QEvent::MouseMove, {x + 100, 50});
    EXPECT_NEAR(placeOf(held), x + 100, 0.01);
    mouse(QEvent::MouseButtonRelease, {x + 100, 50});
    EXPECT_EQ(stage.chosen(), "");
}

TEST_F(InsightWindowTest, APressChoosesWhatIsThere) {
    model.zoom(0.25, MadeDay::midnight + 16h);
    InsightStage::turn();
    const double x = placeOf(MadeDay::midnight + 16h + 10min);
    mouse(QEvent::MouseButtonPress, {x + 3, 50});
    mouse(QEvent::MouseMove, {x + 4, 51}); // the hand is not steady
    mouse(QEvent::MouseButtonRelease, {x + 4, 51});
    EXPECT_EQ(stage.chosen(), "16:10 Pauze gevraagd, pauze tot 16:25");
    const double nowhere = placeOf(MadeDay::midnight + 15h + 30min);
    mouse(QEvent::MouseButtonPress, {nowhere, 50});
    mouse(QEvent::MouseButtonRelease, {nowhere, 50});
    EXPECT_EQ(stage.chosen(), "16:10 Pauze gevraagd, pauze tot 16:25");
}

TEST_F(InsightWindowTest, EveryRowCanBeAskedWhyAndTheAnswerIsShown) {
    model.choose(stage.eventNamed("14:00"));
    InsightStage::turn();
    InsightStage::type(list, Qt::Key_Return);
    EXPECT_EQ(stage.takeAsked(), Texts{"why Drempel van Bandje: -65 dBm, was -70"});
    stage.button("Waarom?")->click();
    EXPECT_EQ(stage.takeAsked(), Texts{"why Drempel van Bandje: -65 dBm, was -70"});
    InsightStage::type(timeline, Qt::Key_Return);
    EXPECT_EQ(stage.takeAsked().size(), 1U);
    model.showAnswer(*model.chosen(), "Omdat jij dat wilde.");
    InsightStage::turn();
    bool isShown = false;
    for (const QLabel* const text : stage.window->findChildren<QLabel*>())
        isShown = isShown || (text->isVisible() && text->text() == "Omdat jij dat wilde.");
    EXPECT_TRUE(isShown);
    EXPECT_EQ(stage.button("Waarom?"), nullptr);
}

TEST_F(InsightWindowTest, APressOnTheLinkOfARowAsksWhy) {
    const QModelIndex row = list.model()->index(3, 0);
    const QRect place = list.visualRect(row);
    const auto press = [&](QPointF at) {
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent event(type, at, list.viewport()->mapToGlobal(at), Qt::LeftButton,
                              type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton,
                              Qt::NoModifier);
            QCoreApplication::sendEvent(list.viewport(), &event);
        }
        InsightStage::turn();
    };
    press(QPointF(place.left() + 60, place.top() + 14));
    EXPECT_EQ(stage.takeAsked(), Texts{});
    EXPECT_EQ(list.currentIndex(), row);
    press(QPointF(place.right() - 30, place.top() + 14));
    EXPECT_EQ(stage.takeAsked().size(), 1U);
    // Nobody knows why nothing is known.
    const QRect unknown = list.visualRect(list.model()->index(0, 0));
    press(QPointF(unknown.right() - 30, unknown.top() + 14));
    EXPECT_EQ(stage.takeAsked(), Texts{});
}

TEST_F(InsightWindowTest, AnOpinionIsGivenShownAndTakenBack) {
    EXPECT_EQ(stage.button("Dit was te laat"), nullptr);
    model.choose(stage.eventNamed("14:58 Gelockt"));
    InsightStage::turn();
    EXPECT_TRUE(stage.button("Dit was onterecht")->isChecked());
    const QString text = stage.button("Dit was te laat")->accessibleName();
    stage.button(text)->click();
    InsightStage::turn();
    EXPECT_FALSE(stage.button("Dit was onterecht")->isChecked());
    EXPECT_TRUE(stage.button(text)->isChecked());
    QAccessibleInterface* const read = QAccessible::queryAccessibleInterface(stage.button(text));
    EXPECT_TRUE(read->state().checked);
    EXPECT_TRUE(QString::fromStdString(stage.chosen()).endsWith("(te laat)"));
    stage.button(text)->click();
    InsightStage::turn();
    EXPECT_FALSE(stage.button(text)->isChecked());
    EXPECT_EQ(stage.takeAsked().size(), 2U);
}

TEST_F(InsightWindowTest, SmallChangesAreListedWhenAskedFor) {
    const int few = list.model()->rowCount();
    stage.button("Toon ook kleine veranderingen")->click();
    InsightStage::turn();
    EXPECT_GT(list.model()->rowCount(), few);
    EXPECT_TRUE(stage.button("Toon ook kleine veranderingen")->isChecked());
}

TEST_F(InsightWindowTest, DaysAreGoneThroughAsFarAsSomethingIsKept) {
    EXPECT_FALSE(stage.button("Volgende dag")->isEnabled());
    stage.button("Vorige dag")->click();
    InsightStage::turn();
    EXPECT_EQ(readRows(list), Texts{"00:00 Van deze dag is niets bewaard"});
    EXPECT_FALSE(stage.button("Vorige dag")->isEnabled());
    stage.button("Volgende dag")->click();
    InsightStage::turn();
    EXPECT_GT(list.model()->rowCount(), 1);
}

TEST_F(InsightWindowTest, ForgettingTakesTwoPressesOnTwoPlaces) {
    QAbstractButton* const forget = stage.button("Geschiedenis wissen");
    forget->click();
    InsightStage::turn();
    EXPECT_EQ(stage.takeAsked(), Texts{});
    QWidget* const focused = stage.window->focusWidget();
    EXPECT_EQ(focused->accessibleName(), "Niet wissen");
    InsightStage::type(*focused, Qt::Key_Space);
    EXPECT_EQ(stage.button("Alles wissen"), nullptr);
    stage.button("Geschiedenis wissen")->click();
    InsightStage::turn();
    InsightStage::type(*stage.window, Qt::Key_Escape);
    EXPECT_TRUE(stage.window->isVisible());
    EXPECT_EQ(stage.button("Alles wissen"), nullptr);
    stage.button("Geschiedenis wissen")->click();
    InsightStage::turn();
    stage.button("Alles wissen")->click();
    EXPECT_EQ(stage.takeAsked(), Texts{"forget"});
    model.setKept({});
    InsightStage::turn();
    EXPECT_FALSE(list.isVisible());
    InsightStage::type(*stage.window, Qt::Key_Escape);
    EXPECT_FALSE(stage.window->isVisible());
}
