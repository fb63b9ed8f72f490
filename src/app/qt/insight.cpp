#include "app/qt/insight.h"

#include "app/history_commands.h"
#include "history/linux/history_file.h"
#include "insight/qt/local_zone.h"
#include "log/log.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace wegslot {
namespace {

using history::HistoryFile;

/// In words, each sentence a line.
Message explained(const std::filesystem::path& file, const insight::Names& names, TimePoint at) {
    const auto minutes = HistoryFile::readAll(file);
    if (!minutes) return minutes.failure().message;
    const auto past = history::stretches(*minutes);
    const auto decisions = history::decisions(past);
    const auto asked = std::ranges::find(decisions, at, &history::Decision::at);
    if (asked == decisions.end())
        return message("Toen besliste Wegslot niets; vraag het bij een waarschuwing, een lock of "
                       "een pauze");
    const history::Reader reader = readerOf(names);
    std::string text;
    for (const Message& sentence : sentences(history::explain(past, *asked), past, reader))
        text += (text.empty() ? "" : "\n") + sentence.translated();
    return text;
}

} // namespace

Insight::Insight(Scheduler& scheduler, const Clock& clock, std::filesystem::path file,
                 insight::Names names)
    : file_(std::move(file)),
      names_(std::move(names)),
      forgeries_(clock),
      sessionBus_(dbus::sessionBus(forgeries_), pump, scheduler,
                  dbus::Connection::Complaints::none),
      appearance_(sessionBus_),
      model_(requests(), insight::localZone(), {}),
      window_(model_, {appearance_.images, appearance_.colors.scheme()}) {
    showKept();
    window_.open();
}

insight::InsightModel::Requests Insight::requests() {
    return {
        .load = [this](insight::Day day) { load(day); },
        .why = [this](std::size_t event) { explain(event); },
        .judge = [this](std::size_t event, history::Opinion::Of opinion) { judge(event, opinion); },
        .forget =
            [this] {
                if (const auto failure = HistoryFile::remove(file_)) Log::say(failure->message);
                showKept();
            }};
}

void Insight::showKept() {
    const auto kept = HistoryFile::kept(file_);
    if (!kept) Log::say(kept.failure().message);
    if (!kept || !*kept) return model_.setKept({});
    const insight::Zone& zone = model_.zone();
    model_.setKept(
        insight::InsightModel::Days{zone.dayOf((*kept)->first), zone.dayOf((*kept)->second)});
}

void Insight::load(insight::Day day) {
    const insight::Span span = model_.zone().span(day);
    // A day before it, too: it tells how this one begins.
    const auto minutes =
        HistoryFile::read(file_, later(span.from, -std::chrono::hours{24}), span.to);
    if (!minutes) return Log::say(minutes.failure().message);
    model_.show(day, insight::timelineOf({*minutes, names_, span, model_.zone()}));
}

void Insight::explain(std::size_t event) {
    const auto answer = std::make_shared<Message>();
    const TimePoint at = model_.timeline().events.at(event).at;
    explaining_ = background_.run(
        [answer, file = file_, names = names_, at] { *answer = explained(file, names, at); },
        [this, answer, event] { model_.showAnswer(event, *answer); });
}

void Insight::judge(std::size_t event, history::Opinion::Of opinion) {
    const insight::Event& judged = model_.timeline().events.at(event);
    const history::Event kept{judged.at, history::Opinion{.of = judged.at, .opinion = opinion}};
    if (const auto failure = HistoryFile::keepOpinion(file_, judged.run, kept))
        return Log::say(failure->message);
    load(model_.zone().dayOf(judged.wall));
}

} // namespace wegslot
