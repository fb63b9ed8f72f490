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
    if (words.size() != 3) return usage(std::string(words[0]) + " NAME DBM");
    const std::optional<int> rssi = parseRssiValue(words[2]);
    if (!rssi) return Misunderstood{"no signal strength: " + std::string(words[2])};
    using Of = SetRssi::Of;
    return SetRssi{.name = std::string(words[1]),
                   .of = words[0] == "rssi" ? Of::Advertisements : Of::Link,
                   .rssi = *rssi};
}

template <SwitchDevice::To to>
Instruction parseSwitch(const Words& words) {
    if (words.size() != 2) return usage(std::string(words[0]) + " NAME");
    return SwitchDevice{.name = std::string(words[1]), .to = to};
}

/// The two digits at this place among the words, or what is usual without them.
std::optional<std::uint8_t> codeAt(std::size_t place, const Words& words, std::uint8_t usual) {
    if (words.size() <= place) return usual;
    const std::optional<Bytes> bytes = parseHex(words[place]);
    return bytes && bytes->size() == 1 ? std::optional(bytes->front()) : std::nullopt;
}

Instruction parseFail(const Words& words) {
    if (words.size() < 2 || words.size() > 3) return usage("fail NAME [STATUS]");
    const std::optional<std::uint8_t> status = codeAt(2, words, Fail{}.status);
    if (!status || *status == 0) return Misunderstood{"no status: " + std::string(words[2])};
    return FailConnections{.name = std::string(words[1]), .failure = {*status}};
}

Instruction parseDrop(const Words& words) {
    if (words.size() < 2 || words.size() > 3) return usage("drop NAME [REASON]");
    const std::optional<std::uint8_t> reason = codeAt(2, words, DropLink{}.reason);
    if (!reason) return Misunderstood{"no reason: " + std::string(words[2])};
    return DropLink{.name = std::string(words[1]), .reason = *reason};
}

Instruction parseHardwareError(const Words& words) {
    if (words.size() > 2) return usage("hardware-error [CODE]");
    const std::optional<std::uint8_t> code = codeAt(1, words, 0);
    if (!code) return Misunderstood{"no code: " + std::string(words[1])};
    return ReportHardwareError{*code};
}

Instruction parseModel(const Words& words) {
    if (words.size() != 3) return usage("model NAME TEXT");
    const std::optional<std::string> model = parseEscaped(words[2]);
    if (!model) return Misunderstood{"no text: " + std::string(words[2])};
    return SetModel{.name = std::string(words[1]), .model = *model};
}

Instruction parseGarbage(const Words& words) {
    if (words.size() != 3) return usage("garbage NAME HEX");
    const std::optional<Bytes> bytes = parseHex(words[2]);
    if (!bytes) return Misunderstood{"no hexadecimal bytes: " + std::string(words[2])};
    return SayGarbage{.name = std::string(words[1]), .bytes = *bytes};
}

Instruction parseAnswer(const Words& words) {
    constexpr int mostDigits = 999999;
    if (words.size() != 3) return usage("answer NAME yes|no|DIGITS");
    AnswerQuestion said{.name = std::string(words[1]), .answer = {}};
    if (words[2] == "no") said.answer.consents = false;
    if (words[2] == "yes" || words[2] == "no") return said;
    const std::optional<int> digits = parseInteger(words[2]);
    if (!digits || *digits < 0 || *digits > mostDigits)
        return Misunderstood{"no answer: " + std::string(words[2])};
    said.answer.digits = static_cast<unsigned>(*digits);
    return said;
}

Instruction parseAdvertising(const Words& words) {
    constexpr std::string_view sets = "sets=";
    constexpr int mostSets = 0xF0;
    if (words.size() < 2 || (words[1] != "older" && words[1] != "extended"))
        return usage("advertising older|extended [sets=NUMBER] [refuses]");
    AdvertisingAbility ability;
    if (words[1] == "extended") ability.commands = AdvertisingAbility::Commands::Extended;
    for (std::size_t at = 2; at < words.size(); ++at) {
        const bool isNumber = words[at].starts_with(sets);
        const std::optional<int> number =
            isNumber ? parseInteger(words[at].substr(sets.size())) : std::nullopt;
        const bool isRight = number ? *number >= 0 && *number <= mostSets : words[at] == "refuses";
        if (!isRight) return Misunderstood{"unknown: " + std::string(words[at])};
        if (number) ability.sets = static_cast<std::uint8_t>(*number);
        if (!number) ability.refuses = true;
    }
    return SetAdvertisingAbility{ability};
}

/// For what is about a device and needs nothing more.
template <typename AboutDevice>
Instruction parseName(const Words& words) {
    if (words.size() != 2) return usage(std::string(words[0]) + " NAME");
    return AboutDevice{std::string(words[1])};
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

using To = SwitchDevice::To;

constexpr Form forms[] = {
    {"device", parseDevice},
    {"rssi", parseRssi},
    {"link-rssi", parseRssi},
    {"silent", parseSwitch<To::Silent>},
    {"loud", parseSwitch<To::Loud>},
    {"connectable", parseSwitch<To::Connectable>},
    {"non-connectable", parseSwitch<To::NotConnectable>},
    {"mute", parseSwitch<To::Mute>},
    {"unmute", parseSwitch<To::Unmute>},
    {"admit", parseSwitch<To::Admit>},
    {"refuse", parseSwitch<To::Refuse>},
    {"forget", parseSwitch<To::Forget>},
    {"fail", parseFail},
    {"drop", parseDrop},
    {"model", parseModel},
    {"garbage", parseGarbage},
    {"rotate", parseName<ChangeAddress>},
    {"see", parsePlain<SeeAdvertising>},
    {"connect", parseName<Connect>},
    {"pair", parseName<Pair>},
    {"look", parseName<Look>},
    {"answer", parseAnswer},
    {"central-status", parseName<TellCentral>},
    {"advertising", parseAdvertising},
    {"filter-duplicates", parseDuplicateFilter},
    {"flood", parseFlood},
    {"flood-result", parsePlain<TellFloodResult>},
    {"status", parsePlain<TellStatus>},
    {"device-status", parseName<TellDevice>},
    {"hardware-error", parseHardwareError},
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
