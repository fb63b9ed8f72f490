#include "insight/chronicle.h"

#include "base/text.h"
#include "control/reason.h"
#include "control/told_phase.h"
#include "model/setting.h"
#include "monitor/away_message.h"
#include "scanner/radio_words.h"
#include "ui/phase_presentation.h"

#include <algorithm>
#include <utility>

namespace wegslot::insight {
namespace {

/// An event and what comes of it may say the same: the radio goes off, and the phase is that it is.
constexpr Nanoseconds sameMoment = std::chrono::seconds{2};

Message stateWords(const Message& name, KeyState state) {
    switch (state) {
    case KeyState::near:
        return message("%1 is dichtbij", {name});
    case KeyState::leaving:
        return message("%1 is zwak te horen", {name});
    case KeyState::away:
        break;
    }
    return message("%1 is weg", {name});
}

} // namespace

void Chronicle::add(Kind kind, Message text, bool isDetail, bool isDeed) {
    const TimePoint wall = later(at_, wallOffset_);
    if (!events_.empty() && events_.back().text == text && wall - events_.back().wall <= sameMoment)
        return;
    events_.push_back({.wall = wall,
                       .run = run_,
                       .at = at_,
                       .kind = kind,
                       .text = std::move(text),
                       .isDetail = isDetail,
                       .isDeed = isDeed});
}

void Chronicle::at(TimePoint at, const history::Minute& minute) {
    run_ = minute.run;
    at_ = at;
    wallOffset_ = minute.wallOffset;
}

void Chronicle::judged(history::Row row, std::optional<KeyState> state) {
    const auto known = states_.find(row);
    if (!state) {
        if (known != states_.end()) states_.erase(known);
        return;
    }
    if (known != states_.end() && known->second == *state) return;
    states_[row] = *state;
    add(Kind::key, stateWords(nameOf(row), *state), true);
}

void Chronicle::operator()(const trace::Event& event) {
    std::visit(
        [this](const auto& told) {
            // What else comes in is seen in what comes of it.
            if constexpr (requires { this->tell(told); }) this->tell(told);
        },
        event);
}

void Chronicle::lost() { states_.clear(); }

void Chronicle::ended() {
    lost();
    isConfirmationDue_ = false;
    radio_.reset();
    phase_.clear();
}

Message Chronicle::nameOf(history::Row row) const {
    const auto found = names_.find(row);
    if (found != names_.end()) return printable(found->second);
    return message("Sleutel %1", {std::to_string(row)});
}

/// In the order in which they are set, as the warning names them.
Message Chronicle::awayKeys() const {
    std::vector<Message> names;
    for (const KeyDevice& key : keys_) {
        const auto row = history::rowOf(key.id);
        const auto state = row ? states_.find(*row) : states_.end();
        if (state != states_.end() && state->second == KeyState::away)
            names.push_back(nameOf(*row));
    }
    return awayMessage(names);
}

Message Chronicle::reasonOf(const history::PhaseEntered& phase) const {
    if (phase.reason == "keysAway") return awayKeys();
    return control::words({.code = phase.reason, .arguments = {}}).value_or(Message{});
}

void Chronicle::operator()(const history::PhaseEntered& entered) {
    const std::string before = std::exchange(phase_, entered.name);
    const Message reason = reasonOf(entered);
    const bool isOwn = entered.cause == PhaseCause::judgement;
    const auto told = [&reason](const Message& otherwise) {
        return reason.isEmpty() ? otherwise : reason;
    };
    if (entered.name == "warning")
        return add(Kind::warning, message("Waarschuwing: %1", {told(awayKeys())}), false, true);
    if (entered.name == "locked") {
        isConfirmationDue_ = entered.cause != PhaseCause::screen;
        return add(Kind::lock, message("Gelockt: %1", {told(awayKeys())}), false, isOwn);
    }
    if (entered.name == "waitingForReturn") {
        if (entered.reason == "screenUnlocked") return add(Kind::unlock, reason);
        if (entered.reason == "lockNotConfirmed")
            return add(Kind::lockFailed, message("Lock mislukt: %1", {reason}), false, true);
        return add(Kind::phase, text(phase::WaitingForReturn{}, {}));
    }
    if (entered.name == "snoozed" && entered.until)
        return add(Kind::pause, message("%1, pauze tot %2",
                                        {told(message("Pauze gevraagd")),
                                         zone_.clockTime(later(*entered.until, wallOffset_))}));
    if (entered.name == "paused") return add(Kind::pause, message("Pauze: %1", {reason}));
    if (entered.name == "present")
        return add(Kind::phase, text(phase::Present{}, {}), before == "leaving");
    if (entered.name == "leaving") return add(Kind::phase, text(phase::Leaving{}, {}), true);
    if (entered.name == "bluetoothUnavailable")
        return add(Kind::radio, told(radioWords(CentralState::poweredOff)));
    // What is left carries nothing: there its own text is the reason.
    if (const auto phase = control::phaseNamed(entered.name))
        add(Kind::phase, told(text(*phase, zone_.clockTime)));
}

void Chronicle::tell(const trace::SettingsChange& change) {
    const auto nameOfId = [this](const Uuid& id) {
        const auto row = history::rowOf(id);
        return row ? nameOf(*row) : message("Sleutel %1", {id.text()});
    };
    for (const Message& text : changesOf(settings_, change.value, nameOfId))
        add(Kind::settings, text);
    for (const auto& [name, value] : change.value)
        settings_.insert_or_assign(name, value);
    if (const auto found = change.value.find("keys"); found != change.value.end())
        keys_ = meaning<std::vector<KeyDevice>>(found->second).value_or(std::vector<KeyDevice>{});
}

void Chronicle::tell(const trace::RadioState& radio) {
    const bool isNews = radio_ ? *radio_ != radio.state : radio.state != CentralState::poweredOn;
    radio_ = radio.state;
    if (isNews) add(Kind::radio, radioWords(radio.state));
}

void Chronicle::tell(const trace::Session& session) {
    switch (session.value) {
    case SessionEvent::locked:
        // One that nobody asked for is a phase of its own.
        if (std::exchange(isConfirmationDue_, false))
            add(Kind::lockConfirmed, message("Lock bevestigd"));
        return;
    case SessionEvent::unlocked:
        return add(Kind::unlock, message("Scherm ontgrendeld"));
    }
}

void Chronicle::tell(const trace::Action& action) {
    // The others are phases.
    if (std::holds_alternative<action::Resume>(action.value)) add(Kind::pause, message("Hervat"));
}

std::vector<Event> Chronicle::finish() && {
    for (const history::Opinion& opinion : opinions_)
        for (Event& event : events_)
            if (event.isDeed && event.at == opinion.of) event.opinion = opinion.opinion;
    return std::move(events_);
}

} // namespace wegslot::insight
