#include "instruction.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "device_line.h"
#include "text.h"

namespace controller {

namespace {

using Words = std::vector<std::string_view>;

constexpr unsigned mostFloodDevices = 65536;
constexpr double mostFloodReports = 1e9;

Misunderstood usage(std::string_view form) { return {"expected: " + std::string(form)}; }

Instruction parseRssi(const Words& words) {
    if (words.size() != 3) return usage("rssi NAME DBM");
    const std::optional<int> rssi = parseRssiValue(words[2]);
    if (!rssi) return Misunderstood{"no signal strength: " + std::string(words[2])};
    return SetRssi{.name = std::string(words[1]), .rssi = *rssi};
}

Instruction parseLoudness(const Words& words) {
    if (words.size() != 2) return usage("silent NAME, or loud NAME");
    using Loudness = SetLoudness::Loudness;
    return SetLoudness{.name = std::string(words[1]),
                       .loudness = words[0] == "loud" ? Loudness::Loud : Loudness::Silent};
}

Instruction parseDuplicateFilter(const Words& words) {
    if (words.size() == 2 && words[1] == "obey") return SetDuplicateFilter{DuplicateFilter::Obey};
    if (words.size() == 2 && words[1] == "ignore")
        return SetDuplicateFilter{DuplicateFilter::Ignore};
    return usage("filter-duplicates obey, or filter-duplicates ignore");
}

Instruction parseFlood(const Words& words) {
    FloodPlan plan;
    for (const std::string_view word : Words(words.begin() + 1, words.end())) {
        const std::size_t equals = word.find('=');
        const std::string_view key = word.substr(0, equals);
        const double value = equals == std::string_view::npos
                                 ? 0
                                 : parseDecimal(word.substr(equals + 1)).value_or(0);
        if (!(value > 0)) return Misunderstood{"no number above zero: " + std::string(word)};
        if (key == "count") {
            plan.devices =
                static_cast<unsigned>(std::lround(std::min<double>(value, mostFloodDevices)));
        } else if (key == "rate") {
            plan.rate = value;
        } else if (key == "seconds") {
            plan.seconds = value;
        } else {
            return Misunderstood{"unknown: " + std::string(word)};
        }
    }
    if (plan.devices == 0 || plan.rate <= 0 || plan.seconds <= 0)
        return usage("flood count=N rate=N seconds=N");
    if (plan.rate * plan.seconds > mostFloodReports) return Misunderstood{"too many reports"};
    return StartFlood{plan};
}

template <typename Plain>
Instruction parsePlain(const Words& words) {
    if (words.size() != 1) return usage(std::string(words[0]) + " alone");
    return Plain{};
}

struct Form {
    std::string_view word;
    Instruction (*parse)(const Words&);
};

constexpr Form forms[] = {
    {"device", parseDevice},
    {"rssi", parseRssi},
    {"silent", parseLoudness},
    {"loud", parseLoudness},
    {"filter-duplicates", parseDuplicateFilter},
    {"flood", parseFlood},
    {"flood-result", parsePlain<TellFloodResult>},
    {"status", parsePlain<TellStatus>},
    {"unplug", parsePlain<Unplug>},
    {"plug", parsePlain<Plug>},
    {"quit", parsePlain<Quit>},
};

} // namespace

Instruction parseInstruction(std::string_view line) {
    const Words words = splitWords(line);
    if (words.empty()) return Misunderstood{"an empty line"};
    const auto* form = std::find_if(std::begin(forms), std::end(forms),
                                    [&](const Form& each) { return each.word == words[0]; });
    if (form == std::end(forms))
        return Misunderstood{"unknown instruction: " + std::string(words[0])};
    return form->parse(words);
}

} // namespace controller
