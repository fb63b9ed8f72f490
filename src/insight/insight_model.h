// What the window "Inzicht" shows and what can be done in it, without a window: one day, the part
// of it that is looked at, and the event that is chosen. A view draws it and hands on touches.
#pragma once

#include "insight/timeline.h"
#include "insight/viewport.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace wegslot::insight {

class InsightModel {
public:
    using Opinion = history::Opinion::Of;

    /// What is asked of others. Events are counted as in the timeline that is shown.
    struct Requests {
        /// Is answered by `show`, at once or later.
        std::function<void(Day)> load;
        /// Is answered by `showAnswer`.
        std::function<void(std::size_t event)> why;
        std::function<void(std::size_t event, Opinion)> judge;
        /// Nothing is kept from then on: is answered by `setKept`.
        std::function<void()> forget;
    };

    struct Days {
        Day first;
        Day last;
        friend bool operator==(const Days&, const Days&) = default;
    };

    /// `changed`: something is to be drawn anew; comes any number of times.
    InsightModel(Requests requests, Zone zone, std::function<void()> changed)
        : requests_(std::move(requests)),
          zone_(std::move(zone)),
          changed_(std::move(changed)) {}
    InsightModel(const InsightModel&) = delete;
    InsightModel& operator=(const InsightModel&) = delete;

    void onChange(std::function<void()> changed) { changed_ = std::move(changed); }

    /// The days of which something is kept; nothing where nothing is. Goes to the last one, unless
    /// one of them is looked at.
    void setKept(std::optional<Days> kept);
    [[nodiscard]] const std::optional<Days>& kept() const { return kept_; }

    /// One for a day that nobody looks at any more is passed over. The same day once more leaves
    /// everything where it is.
    void show(Day day, Timeline timeline);

    [[nodiscard]] std::string dayName() const;
    [[nodiscard]] bool canGo(int days) const;
    void go(int days);
    [[nodiscard]] bool isLoading() const { return kept_ && !isShown_; }

    [[nodiscard]] const Zone& zone() const { return zone_; }
    [[nodiscard]] const Timeline& timeline() const { return timeline_; }

    [[nodiscard]] const Viewport& viewport() const { return viewport_; }
    void zoom(double factor, TimePoint about);
    /// About what is chosen if that is seen, and about the middle otherwise.
    void zoom(double factor);
    void move(Nanoseconds by);
    void showAll();

    /// The events that are listed: all of them, or those that are no details.
    [[nodiscard]] const std::vector<std::size_t>& listed() const { return listed_; }
    [[nodiscard]] bool listsDetails() const { return listsDetails_; }
    void listDetails(bool wanted);

    [[nodiscard]] const std::optional<std::size_t>& chosen() const { return chosen_; }
    [[nodiscard]] const Event* chosenEvent() const;
    void choose(std::size_t event);
    /// The one so many places further in the list; without one chosen the nearest in what is seen.
    void walk(int places);
    void chooseFirst();
    void chooseLast();

    /// Of a list and of a screen reader: "12:31 Gelockt: Telefoon is buiten bereik".
    [[nodiscard]] std::string rowText(std::size_t event) const;
    [[nodiscard]] static bool canBeAsked(const Event& event) { return event.kind != Kind::unknown; }

    void why(std::size_t event);
    void showAnswer(std::size_t event, Message answer);
    /// Empty until it came.
    [[nodiscard]] std::string answer() const;

    /// Gives the opinion of what is chosen, or takes it back.
    void judge(Opinion opinion);

    /// "Geschiedenis wissen" is asked about before it is done.
    [[nodiscard]] bool isForgettingAsked() const { return isForgettingAsked_; }
    void askForgetting(bool wanted);
    void forget();

private:
    void load(Day day);
    void list();
    void changed() const {
        if (changed_) changed_();
    }

    Requests requests_;
    Zone zone_;
    std::function<void()> changed_;
    std::optional<Days> kept_;
    Day day_{};
    bool isShown_ = false;
    Timeline timeline_;
    Viewport viewport_;
    std::vector<std::size_t> listed_;
    bool listsDetails_ = false;
    std::optional<std::size_t> chosen_;
    Message answer_;
    bool isForgettingAsked_ = false;
};

} // namespace wegslot::insight
