#include "trace/reader.h"

#include "model/settings.h"
#include "trace/event_reader.h"
#include "trace/fields.h"

#include <charconv>
#include <utility>

namespace wegslot {
namespace {

using namespace trace;

/// What a store may hold by accident, a person does not set.
void checkMeaning(const auto& setting, const PreferenceValue& value) {
    if (setting.understands(value)) return;
    if (const auto* const rule = std::get_if<std::string>(&value))
        fail("onbekende regel " + jsonString(*rule));
    fail(std::string(setting.name()) + " bevat een onleesbare of dubbele sleutel");
}

void checkMeanings(const Preferences& values) {
    Settings::specimen().visit([&values](const auto& setting) {
        const auto found = values.find(setting.name());
        if (found != values.end()) checkMeaning(setting, found->second);
    });
}

// From the decimal text, so that 0.3 is 300 ms and not a nanosecond less.
Nanoseconds time(const JsonNode& node) {
    constexpr std::int64_t longest = longestDuration / std::chrono::seconds{1};
    std::int64_t seconds = 0;
    std::int64_t milliseconds = 0;
    if (const auto* const integer = node.as<JsonNode::Integer>()) {
        seconds = integer->value;
    } else if (const auto* const real = node.as<JsonNode::Real>()) {
        const char* const end = real->text.data() + real->text.size();
        const auto whole = std::from_chars(real->text.data(), end, seconds);
        const auto decimals = end - whole.ptr - 1;
        if (whole.ec != std::errc{} || real->text.front() == '-' || *whole.ptr != '.' ||
            decimals > 3)
            fail("t is geen tijd van hoogstens drie decimalen: " + real->text);
        if (std::from_chars(whole.ptr + 1, end, milliseconds).ptr != end)
            fail("t is geen tijd van hoogstens drie decimalen: " + real->text);
        for (auto missing = decimals; missing < 3; ++missing)
            milliseconds *= 10;
    } else {
        fail("t is geen getal");
    }
    if (seconds < 0) fail("t is negatief");
    if (seconds >= longest) fail("t is te groot");
    return std::chrono::seconds{seconds} + std::chrono::milliseconds{milliseconds};
}

JsonNode tree(std::string_view written) {
    if (written.find_first_not_of(" \t\r") == std::string_view::npos) fail("lege regel");
    auto parsed = parseJson(written);
    if (!parsed) fail("geen geldige JSON");
    return *std::move(parsed);
}

trace::Event onlyEvent(Fields& fields) {
    const auto [name, node] = fields.only();
    return trace::readEvent(name, *node);
}

trace::Line line(std::string_view written) {
    const JsonNode root = tree(written);
    Fields fields(root, "de regel");
    trace::Line line;
    line.time = time(fields.required("t"));
    line.event = onlyEvent(fields);
    return line;
}

} // namespace

Result<trace::Line> TraceReader::read(std::string_view text) {
    try {
        trace::Line read = line(text);
        if (read.time < last_) fail("t gaat terug");

        Position position = Position::running;
        if (std::holds_alternative<trace::Start>(read.event)) {
            if (position_ != Position::beginning) fail("start staat niet vooraan");
            if (read.time != Nanoseconds{0}) fail("start is niet op t 0");
            position = Position::afterStart;
        }
        if (const auto* const change = std::get_if<trace::SettingsChange>(&read.event)) {
            const bool stored = read.time == Nanoseconds{0} && (position_ == Position::beginning ||
                                                                position_ == Position::afterStart);
            if (stored) position = Position::afterSettings;
            if (!stored) checkMeanings(change->value);
        }
        last_ = read.time;
        position_ = position;
        return read;
    } catch (const Invalid& invalid) {
        return Failure{invalid.message};
    }
}

Result<trace::Event> readEvent(std::string_view text) {
    try {
        const JsonNode root = tree(text);
        Fields fields(root, "de gebeurtenis");
        return onlyEvent(fields);
    } catch (const Invalid& invalid) {
        return Failure{invalid.message};
    }
}

Result<PreferenceValue> readPreference(std::string_view name, std::string_view value) {
    try {
        const auto node = parseJson(value).value_or(JsonNode{std::string(value)});
        std::optional<PreferenceValue> read;
        Settings::specimen().visit([&](const auto& setting) {
            if (setting.name() != name) return;
            read = trace::readPreference(setting.byDefault(), name, node);
            checkMeaning(setting, *read);
        });
        if (!read) fail("onbekende waarde " + jsonString(name) + " van voorkeur");
        return *std::move(read);
    } catch (const Invalid& invalid) {
        return Failure{invalid.message};
    }
}

} // namespace wegslot
