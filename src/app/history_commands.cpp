#include "app/history_commands.h"

#include "app/local_time.h"
#include "base/text.h"
#include "control/reason.h"
#include "control/told_phase.h"
#include "trace/writer.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace wegslot {
namespace {

using namespace history;
using Json = nlohmann::ordered_json;

/// Further from a time that somebody names, nothing is meant by it.
constexpr Nanoseconds nearTime = std::chrono::minutes{10};

TimePoint wall(const Stretch& stretch, TimePoint at) { return later(at, stretch.wallOffset); }

std::vector<Decision> chosen(const std::vector<Stretch>& past, const command::Why& asked,
                             std::optional<TimePoint> at) {
    auto found = decisions(past);
    if (!at) {
        const std::size_t many = std::min(asked.last, found.size());
        return {found.end() - static_cast<std::ptrdiff_t>(many), found.end()};
    }
    const auto distance = [&](const Decision& decision) {
        return std::chrono::abs(wall(past[decision.stretch], decision.at) - *at);
    };
    const auto nearest = std::ranges::min_element(found, {}, distance);
    if (nearest == found.end() || distance(*nearest) > nearTime) return {};
    return {*nearest};
}

std::string inUtc(TimePoint instant) {
    const auto fraction = instant - std::chrono::floor<std::chrono::seconds>(instant);
    const auto thousandths = std::chrono::floor<std::chrono::milliseconds>(fraction).count();
    std::string digits = std::to_string(1000 + thousandths).substr(1);
    std::string text = utcText(instant).substr(0, 19) + "." + digits + "Z";
    text[10] = 'T';
    return text;
}

/// One thing that is kept, as a program reads it.
struct Kept {
    TimePoint at; ///< on the clock on the wall
    std::string kind;
    std::string key; ///< its name
    Json value;
};

class Rows {
public:
    explicit Rows(const Reader& reader) : reader_(reader) {}

    void add(const Minute& minute) {
        std::vector<Kept> kept;
        for (const auto& [row, key] : minute.keys)
            addKey(kept, minute, row, key);
        for (const Event& event : minute.events)
            addEvent(kept, later(event.at, minute.wallOffset), event);
        std::ranges::stable_sort(kept, {}, &Kept::at);
        std::ranges::move(kept, std::back_inserter(rows_));
    }

    [[nodiscard]] const std::vector<Kept>& all() const { return rows_; }

private:
    void addKey(std::vector<Kept>& kept, const Minute& minute, Row row, const KeyMinute& key) {
        const std::string name = reader_.nameOf(row).builtIn();
        for (const Sample& sample : key.samples)
            kept.push_back({later(sample.at, minute.wallOffset), "heard", name, sample.rssi});
        for (std::size_t i = 0; i < key.states.size() && i < minute.judged.size(); ++i) {
            auto& before = states_[row];
            if (key.states[i] == before) continue;
            before = key.states[i];
            if (before)
                kept.push_back({later(minute.judged[i], minute.wallOffset), "state", name,
                                std::string(wegslot::name(*before))});
        }
    }

    void addEvent(std::vector<Kept>& kept, TimePoint at, const Event& event) const {
        if (const auto* const entered = event.phase())
            kept.push_back(
                {at, "phase", "", Json{{"phase", entered->name}, {"reason", entered->reason}}});
        if (const auto* const told = std::get_if<trace::Event>(&event.what)) {
            // {"t":0,"session":"locked"}
            Json line = Json::parse(written(trace::Line{Nanoseconds{0}, *told}));
            line.erase("t");
            if (line.contains("settings") && line["settings"].contains("keys"))
                for (Json& key : line["settings"]["keys"])
                    key = named(key);
            kept.push_back({at, line.begin().key(), "", line.begin().value()});
        }
    }

    /// {"id":"00000000-0000-0000-0000-000000000065","name":"","threshold":-75}
    [[nodiscard]] Json named(const Json& key) const {
        const auto id = Uuid::parse(key.value("id", ""));
        const auto row = id ? rowOf(*id) : std::nullopt;
        return {{"name", row ? reader_.nameOf(*row).builtIn() : ""},
                {"threshold", key.value("threshold", 0.0)}};
    }

    const Reader& reader_;
    std::map<Row, std::optional<KeyState>> states_;
    std::vector<Kept> rows_;
};

std::string quoted(const std::string& text) {
    std::string field = "\"";
    for (const char sign : text)
        field += sign == '"' ? std::string("\"\"") : std::string(1, sign);
    return field + "\"";
}

void printWords(const std::vector<Minute>& minutes, const Reader& reader, const PrintLine& print) {
    for (const Minute& minute : minutes)
        for (const Event& event : minute.events) {
            const auto* const entered = event.phase();
            if (entered == nullptr) continue;
            const auto when = [&](TimePoint at) {
                return reader.when(later(at, minute.wallOffset));
            };
            const auto text = control::toldPhase(
                entered->name, {.code = entered->reason, .arguments = {}}, std::nullopt, when);
            const auto why = control::words({.code = entered->reason, .arguments = {}});
            print(when(event.at) + "  " + padded(text ? text->translated() : entered->name, 32) +
                  (why ? "  " + why->translated() : ""));
        }
}

} // namespace

std::map<Row, std::string> keyNames(const Settings& settings, const Remembered& remembered) {
    std::map<Row, std::string> names;
    const KeyRows& rows = remembered.historyRows.get();
    for (const KeyDevice& key : settings.keys.get())
        if (const auto row = rows.find(key.id); row != rows.end())
            names.emplace(row->second, printable(key.name));
    return names;
}

Reader readerOf(std::map<Row, std::string> names) {
    return {.nameOf =
                [names = std::move(names)](Row row) {
                    const auto found = names.find(row);
                    return found == names.end() ? message("een verwijderde sleutel")
                                                : Message(found->second);
                },
            .when = localTime};
}

Result<std::vector<std::string>> whyLines(const std::vector<Minute>& minutes,
                                          const command::Why& asked, std::optional<TimePoint> at,
                                          const Reader& reader) {
    const auto past = stretches(minutes);
    const auto found = chosen(past, asked, at);
    if (found.empty())
        return Failure{at ? message("Rond die tijd is niets bewaard waar een waarom bij hoort")
                          : message("Er is nog niets bewaard waar een waarom bij hoort")};
    std::vector<std::string> lines;
    for (const Decision& decision : found) {
        const Explanation explanation = explain(past, decision);
        if (asked.json) {
            lines.push_back(json(explanation, past, reader));
            continue;
        }
        lines.push_back(title(decision, past[decision.stretch], reader).translated());
        for (const Message& sentence : sentences(explanation, past, reader))
            lines.push_back("  " + sentence.translated());
    }
    return lines;
}

void printHistory(const std::vector<Minute>& minutes, const command::History& asked,
                  const Reader& reader, const PrintLine& print) {
    if (!asked.json && !asked.csv) return printWords(minutes, reader, print);
    Rows rows(reader);
    for (const Minute& minute : minutes)
        rows.add(minute);
    if (asked.csv) print("time,kind,key,value");
    for (const Kept& kept : rows.all()) {
        if (asked.csv) {
            const std::string value =
                kept.value.is_string() ? kept.value.get<std::string>() : kept.value.dump();
            print(inUtc(kept.at) + "," + kept.kind + "," + quoted(kept.key) + "," + quoted(value));
            continue;
        }
        Json line{{"time", inUtc(kept.at)}};
        if (!kept.key.empty()) line["key"] = kept.key;
        line[kept.kind] = kept.value;
        print(line.dump());
    }
}

} // namespace wegslot
