// The window "Inzicht" over a day that is made up, and what it asked of others.
#pragma once

#include "insight/qt/insight_window.h"
#include "insight/qt/local_zone.h"
#include "tests/interface/picture_stage.h"
#include "tests/support/made_history.h"
#include "tests/support/time_zone.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QListView>

#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace wegslot {

/// A day of three keys: at work from nine, for lunch at noon, a lock too soon at three, home at
/// half past five.
class MadeDay : public MadeHistory {
public:
    using Nanos = Nanoseconds;
    static constexpr TimePoint midnight{std::chrono::days{20780}};
    static constexpr insight::Day day{std::chrono::days{20780}};

    MadeDay() {
        using namespace std::chrono_literals;
        setKeys(midnight + 8h + 50min, {{1, -75}, {2, -80}, {3, -70}});
        enter(midnight + 8h + 50min, "waitingForReturn", "guardBegins");
        stay(8h + 50min, 8h + 56min, far(), {});
        stay(8h + 56min, 12h + 4min, near(), "present");
        leave(12h + 4min);
        stay(12h + 5min, 12h + 41min, far(), {});
        comeBack(12h + 41min);
        stay(12h + 41min, 14h + 58min, near(), "present");
        setKeys(midnight + 14h, {{1, -75}, {2, -80}, {3, -65}});
        leave(14h + 58min);
        stay(14h + 59min, 14h + 59min + 20s, far(), {});
        comeBack(14h + 59min + 20s);
        stay(14h + 59min + 20s, 16h + 10min, near(), "present");
        enter(midnight + 16h + 10min, "snoozed", "pauseAsked", PhaseCause::request,
              midnight + 16h + 25min);
        stay(16h + 10min, 16h + 25min, near(), {});
        // Then it was switched off for a while.
        begin(2);
        setKeys(midnight + 16h + 50min, {{1, -75}, {2, -80}, {3, -65}});
        stay(16h + 50min, 17h + 30min, near(), "present");
        leave(17h + 30min);
        stay(17h + 31min, 17h + 45min, far(), {});
        happen(midnight + 17h + 40min,
               history::Opinion{.of = locks_.at(1), .opinion = history::Opinion::Of::unjust});
    }

    [[nodiscard]] insight::Timeline timeline(const insight::Zone& zone) {
        return insight::timelineOf(
            {.minutes = minutes(), .names = names, .day = zone.span(day), .zone = zone});
    }

    insight::Names names{{1, "iPhone van Anna"}, {2, "Apple Watch"}, {3, "Bandje"}};

private:
    using States = std::map<history::Row, KeyState>;

    static States near() { return {{1, KeyState::near}, {2, KeyState::near}, {3, KeyState::near}}; }
    static States far() { return {{1, KeyState::away}, {2, KeyState::away}, {3, KeyState::away}}; }

    /// Strengths that waver as real ones do, the same in every run.
    static int strength(history::Row row, Nanos at, int about) {
        const auto second = static_cast<double>(at / std::chrono::seconds{1});
        return about + static_cast<int>(std::lround(5 * std::sin(second / 97 + row) +
                                                    4 * std::sin(second * 1.7 * row)));
    }

    void hear(Nanos from, Nanos to, int weaker) {
        static constexpr int usual[]{-52, -60, -55};
        for (Nanos at = from; at < to; at += std::chrono::seconds{5})
            for (const history::Row row : {1, 2, 3})
                MadeHistory::hear(row, midnight + at, strength(row, at, usual[row - 1] - weaker));
    }

    void stay(Nanos from, Nanos to, const States& states, const std::string& phase) {
        if (!phase.empty()) enter(midnight + from, phase, "keyNear");
        judge(midnight + from, midnight + to, states);
        if (states == near()) hear(from, to, 0);
    }

    void leave(Nanos at) {
        using namespace std::chrono_literals;
        using enum KeyState;
        const TimePoint wall = midnight + at;
        hear(at, at + 30s, 32);
        enter(wall, "leaving", "keyNotNear");
        judge(wall, wall + 10s, {{1, leaving}, {2, leaving}, {3, away}});
        judge(wall + 10s, wall + 1min, far());
        enter(wall + 10s, "warning", "keysAway", PhaseCause::judgement, wall + 15s);
        enter(wall + 15s, "locked", "keysAway");
        locks_.push_back(wall + 15s);
        happen(wall + 16s, trace::Event{trace::Session{SessionEvent::locked}});
    }

    void comeBack(Nanos at) {
        const TimePoint wall = midnight + at - std::chrono::seconds{5};
        happen(wall, trace::Event{trace::Session{SessionEvent::unlocked}});
        enter(wall, "waitingForReturn", "screenUnlocked", PhaseCause::screen);
    }

    std::vector<TimePoint> locks_;
};

/// The window, without a screen.
class InsightStage {
public:
    explicit InsightStage(bool isKept = true, const QLocale& language = QLocale(QLocale::Dutch))
        : model({.load = [this](insight::Day day) { load(day); },
                 .why = [this](std::size_t event) { asked.push_back("why " + textOf(event)); },
                 .judge =
                     [this](std::size_t event, insight::InsightModel::Opinion opinion) {
                         asked.push_back("judge " + textOf(event) + " " +
                                         std::to_string(static_cast<int>(opinion)));
                     },
                 .forget = [this] { asked.emplace_back("forget"); }},
                insight::localZone(language), {}) {
        if (isKept)
            model.setKept(
                insight::InsightModel::Days{MadeDay::day - std::chrono::days{1}, MadeDay::day});
        window.emplace(model, insight::Surroundings{images, scheme});
        window->setAttribute(Qt::WA_DontShowOnScreen);
        window->resize(QSize(1040, 660) * controlScale()); // whatever the screen is like
        window->open();
        turn();
    }

    void load(insight::Day day) {
        if (day == MadeDay::day) return model.show(day, made.timeline(model.zone()));
        std::vector<history::Minute> none;
        model.show(day, insight::timelineOf({.minutes = none,
                                             .names = made.names,
                                             .day = model.zone().span(day),
                                             .zone = model.zone()}));
    }

    static void turn() {
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
    }

    [[nodiscard]] std::string textOf(std::size_t event) const {
        return model.timeline().events[event].text.builtIn();
    }

    [[nodiscard]] std::string chosen() const {
        return model.chosen() ? model.rowText(*model.chosen()) : "";
    }

    /// That somebody found unjust.
    [[nodiscard]] std::size_t unjustLock() const {
        for (const std::size_t event : model.listed())
            if (model.timeline().events[event].opinion == history::Opinion::Of::unjust)
                return event;
        return 0;
    }

    /// The listed event with this text, which there is; the last of several.
    [[nodiscard]] std::size_t eventNamed(const std::string& text) const {
        std::size_t found = 0;
        for (const std::size_t event : model.listed())
            if (model.rowText(event).find(text) != std::string::npos) found = event;
        return found;
    }

    /// What a screen reader calls so, and can be seen.
    [[nodiscard]] QAbstractButton* button(const QString& name) const {
        for (QAbstractButton* const one : window->findChildren<QAbstractButton*>())
            if (one->isVisible() && one->accessibleName() == name) return one;
        return nullptr;
    }

    template <typename Part>
    [[nodiscard]] Part& part() const {
        for (QWidget* const widget : window->findChildren<QWidget*>())
            if (auto* const found = dynamic_cast<Part*>(widget)) return *found;
        throw std::logic_error("there is no such part");
    }

    static void type(QWidget& widget, int key) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&widget, &press);
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&widget, &release);
        turn();
    }

    [[nodiscard]] std::vector<std::string> takeAsked() { return std::exchange(asked, {}); }

    TimeZone zone{"UTC"};
    MadeDay made;
    std::vector<std::string> asked;
    SymbolImages images;
    Observable<Scheme> scheme{Scheme::light};
    insight::InsightModel model;
    std::optional<insight::InsightWindow> window;
};

} // namespace wegslot
