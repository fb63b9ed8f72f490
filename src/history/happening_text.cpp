#include "history/happening_text.h"

#include "trace/fields.h"
#include "trace/json_tree.h"
#include "trace/reader.h"
#include "trace/writer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace wegslot::history {
namespace {

using Milliseconds = std::chrono::milliseconds;

constexpr std::string_view phaseWord = "phase";
constexpr std::string_view opinionWord = "opinion";
constexpr std::string_view rested = R"({"rested":true})";

template <typename T>
using Word = std::pair<std::string_view, T>;

constexpr std::array<Word<PhaseCause>, 3> causes{{
    {"judgement", PhaseCause::judgement},
    {"request", PhaseCause::request},
    {"screen", PhaseCause::screen},
}};

constexpr std::array<Word<Opinion::Of>, 3> opinions{{
    {"unjust", Opinion::Of::unjust},
    {"late", Opinion::Of::late},
    {"none", Opinion::Of::none},
}};

template <typename T, std::size_t size>
std::string wordOf(T value, const std::array<Word<T>, size>& words) {
    return jsonString(std::ranges::find(words, value, &Word<T>::second)->first);
}

std::string millisecondsOf(TimePoint at) {
    return std::to_string(std::chrono::floor<Milliseconds>(at.time_since_epoch()).count());
}

std::string member(std::string_view name, const std::string& value) {
    return jsonString(name) + ":" + value;
}

std::string text(const trace::Event& event) { return wegslot::written(event); }

std::string text(const PhaseEntered& entered) {
    std::string fields = member("name", jsonString(entered.name)) + "," +
                         member("cause", wordOf(entered.cause, causes));
    if (!entered.reason.empty()) fields += "," + member("reason", jsonString(entered.reason));
    if (entered.until) fields += "," + member("until", millisecondsOf(*entered.until));
    return "{" + member(phaseWord, "{" + fields + "}") + "}";
}

std::string text(const Opinion& opinion) {
    const std::string fields = member("of", millisecondsOf(opinion.of)) + "," +
                               member("is", wordOf(opinion.opinion, opinions));
    return "{" + member(opinionWord, "{" + fields + "}") + "}";
}

std::string text(const Rested& /*rested*/) { return std::string(rested); }

// --- And back ------------------------------------------------------------------------------------

std::string textOf(const JsonNode& node) {
    if (const auto* const text = node.as<std::string>()) return *text;
    trace::fail("geen tekst: " + written(node));
}

TimePoint instantOf(const JsonNode& node) {
    constexpr std::int64_t last =
        std::chrono::floor<Milliseconds>(TimePoint::max().time_since_epoch()).count();
    const auto* const whole = node.as<JsonNode::Integer>();
    if (whole == nullptr || whole->value < -last || whole->value > last)
        trace::fail("geen tijdstip: " + written(node));
    return TimePoint{Milliseconds{whole->value}};
}

template <typename T, std::size_t size>
T valueOf(const JsonNode& node, const std::array<Word<T>, size>& words) {
    const auto found = std::ranges::find(words, textOf(node), &Word<T>::first);
    if (found == words.end()) trace::fail("onbekende waarde: " + written(node));
    return found->second;
}

PhaseEntered phaseFrom(const JsonNode& node) {
    trace::Fields fields(node, phaseWord);
    PhaseEntered entered;
    entered.name = textOf(fields.required("name"));
    entered.cause = valueOf(fields.required("cause"), causes);
    if (const JsonNode* const reason = fields.optional("reason")) entered.reason = textOf(*reason);
    if (const JsonNode* const until = fields.optional("until")) entered.until = instantOf(*until);
    fields.finish();
    return entered;
}

Opinion opinionFrom(const JsonNode& node) {
    trace::Fields fields(node, opinionWord);
    Opinion opinion;
    opinion.of = instantOf(fields.required("of"));
    opinion.opinion = valueOf(fields.required("is"), opinions);
    fields.finish();
    return opinion;
}

} // namespace

std::string written(const Happening& happening) {
    return std::visit([](const auto& kind) { return text(kind); }, happening);
}

Result<Happening> readHappening(std::string_view text) {
    if (text == rested) return Happening{Rested{}};
    const auto root = parseJson(text);
    const auto* const object = root ? root->as<JsonNode::Object>() : nullptr;
    const bool isAlone = object != nullptr && object->size() == 1;
    try {
        if (isAlone && object->front().name == phaseWord)
            return Happening{phaseFrom(object->front().node)};
        if (isAlone && object->front().name == opinionWord)
            return Happening{opinionFrom(object->front().node)};
    } catch (const trace::Invalid& invalid) {
        return Failure{invalid.message};
    }
    auto event = readEvent(text);
    if (!event) return event.failure();
    return Happening{*std::move(event)};
}

} // namespace wegslot::history
