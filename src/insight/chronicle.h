// What happened, put into words while the minutes are gone through in the order in which they were:
// what a phase is called depends on the one before it, and a change on what was set before.
#pragma once

#include "insight/settings_words.h"
#include "insight/timeline.h"
#include "model/key_device.h"

#include <optional>
#include <string>
#include <vector>

namespace wegslot::insight {

class Chronicle {
public:
    /// Both must outlive it.
    Chronicle(const Names& names, const Zone& zone) : names_(names), zone_(zone) {}

    /// What is told next is of this instant of `minute`.
    void at(TimePoint at, const history::Minute& minute);

    /// What a key is judged to be; nothing for what is no key.
    void judged(history::Row row, std::optional<KeyState> state);

    void happened(const history::Happening& what) { std::visit(*this, what); }

    /// Nothing is known for a while.
    void lost();
    /// What is told next is of another run, which knows nothing of what this one waits for.
    void ended();

    /// The keys as they are set now.
    [[nodiscard]] const std::vector<KeyDevice>& keys() const { return keys_; }
    [[nodiscard]] const std::string& phase() const { return phase_; }
    [[nodiscard]] Message nameOf(history::Row row) const;

    /// Also those of the days before.
    [[nodiscard]] std::vector<Event> finish() &&;

    void operator()(const trace::Event& event);
    void operator()(const history::PhaseEntered& phase);
    /// What nobody knows of shows by itself.
    void operator()(const history::Rested& /*rested*/) {}
    void operator()(const history::Opinion& opinion) { opinions_.push_back(opinion); }

private:
    void tell(const trace::SettingsChange& change);
    void tell(const trace::RadioState& radio);
    void tell(const trace::Session& session);
    void tell(const trace::Action& action);
    void add(Kind kind, Message text, bool isDetail = false, bool isDeed = false);
    [[nodiscard]] Message reasonOf(const history::PhaseEntered& phase) const;
    [[nodiscard]] Message awayKeys() const;

    const Names& names_;
    const Zone& zone_;
    std::vector<Event> events_;
    std::vector<history::Opinion> opinions_;
    std::map<history::Row, KeyState> states_;
    Preferences settings_;
    std::vector<KeyDevice> keys_;
    std::optional<CentralState> radio_;
    std::string phase_;
    bool isConfirmationDue_ = false; ///< a lock was asked for and is not confirmed yet
    // Of what is being told:
    std::int64_t run_ = 0;
    TimePoint at_;
    Nanoseconds wallOffset_{0};
};

} // namespace wegslot::insight
