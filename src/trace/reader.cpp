#include "trace/reader.h"

#include "model/settings.h"
#include "trace/fields.h"

#include <charconv>
#include <utility>

namespace wegslot {
namespace {

using namespace trace;
using trace::take;

/// Reads a value of the kind that a preference has by default.
struct ReadLike {
    const JsonNode& node;
    std::string_view name;

    PreferenceValue operator()(bool) const { return boolean(node, name); }
    PreferenceValue operator()(double) const { return duration(node, name); }
    PreferenceValue operator()(const std::string&) const { return text(node, name); }
    PreferenceValue operator()(const Data&) const {
        static_cast<void>(list(node, name));
        return Data{written(node)};
    }
};

PreferenceValue preference(const auto& setting, const JsonNode& node) {
    return std::visit(ReadLike{node, setting.name()}, setting.byDefault());
}

/// What a store may hold by accident, a person does not set.
void checkMeaning(const auto& setting, const PreferenceValue& value) {
    if (setting.understands(value)) return;
    if (const auto* const rule = std::get_if<std::string>(&value))
        fail("onbekende regel " + jsonString(*rule));
    fail(std::string(setting.name()) + " bevat een onleesbare of dubbele sleutel");
}

void take(const JsonNode& node, std::string_view what, Preferences& values) {
    Fields fields(node, what);
    Settings::specimen().visit([&](const auto& setting) {
        if (const JsonNode* const value = fields.optional(setting.name()))
            values.emplace(setting.name(), preference(setting, *value));
    });
    fields.finish();
}

void checkMeanings(const Preferences& values) {
    Settings::specimen().visit([&values](const auto& setting) {
        const auto found = values.find(setting.name());
        if (found != values.end()) checkMeaning(setting, found->second);
    });
}

/// Takes the fields of an event from its value.
class Take {
public:
    Take(const JsonNode& node, std::string_view event) : node_(node), event_(event) {}

    Take& operator()(std::string_view name, auto& value) {
        take(fields().required(name), name, value);
        return *this;
    }

    template <typename T>
    Take& operator()(std::string_view name, std::optional<T>& value) {
        if (const JsonNode* const node = fields().optional(name))
            take(*node, name, value.emplace());
        return *this;
    }

    Take& operator()(std::string_view name, std::vector<GattUuid>& value) {
        if (const JsonNode* const node = fields().optional(name)) take(*node, name, value);
        return *this;
    }

    Take& either(std::string_view name, auto& value, std::string_view other, auto& otherwise) {
        (*this)(other, otherwise);
        if (otherwise.has_value() == (fields().optional(name) != nullptr))
            fail(std::string(event_) + " heeft precies een van " + std::string(name) + " en " +
                 std::string(other));
        return (*this)(name, value);
    }

    /// What it says is not judged.
    Take& always(std::string_view name, GattUuid /*value*/) {
        static_cast<void>(text(fields().required(name), name));
        return *this;
    }

    void operator()(auto& whole) {
        isWhole_ = true;
        take(node_, event_, whole);
    }

    template <typename T>
    void operator()(std::optional<T>& whole) {
        isWhole_ = true;
        if (node_.as<std::nullptr_t>() == nullptr) take(node_, event_, whole.emplace());
    }

    /// To be called when all fields have been taken.
    void finish() const {
        if (fields_) return fields_->finish();
        if (!isWhole_ && !boolean(node_, event_))
            fail(std::string(event_) + " kan alleen true zijn");
    }

private:
    Fields& fields() { return fields_ ? *fields_ : fields_.emplace(node_, event_); }

    const JsonNode& node_;
    std::string_view event_;
    std::optional<Fields> fields_;
    bool isWhole_ = false;
};

/// Looks for the event with this word from the one at `index` on.
template <std::size_t index = 0>
trace::Event event(std::string_view word, const JsonNode& node) {
    if constexpr (index == std::variant_size_v<trace::Event>) {
        fail("onbekende gebeurtenis " + jsonString(word));
    } else {
        using This = std::variant_alternative_t<index, trace::Event>;
        if (This::word != word) return event<index + 1>(word, node);
        This read;
        Take take(node, word);
        This::fields(read, take);
        take.finish();
        return read;
    }
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

trace::Line line(std::string_view written) {
    if (written.find_first_not_of(" \t\r") == std::string_view::npos) fail("lege regel");
    const auto tree = parseJson(written);
    if (!tree) fail("geen geldige JSON");
    Fields fields(*tree, "de regel");
    trace::Line line;
    line.time = time(fields.required("t"));
    const auto [name, node] = fields.only();
    line.event = event(name, *node);
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
            if (!stored) checkMeanings(change->values);
        }
        last_ = read.time;
        position_ = position;
        return read;
    } catch (const Invalid& invalid) {
        return Failure{invalid.message};
    }
}

Result<PreferenceValue> readPreference(std::string_view name, std::string_view value) {
    try {
        const auto tree = parseJson(value).value_or(JsonNode{std::string(value)});
        std::optional<PreferenceValue> read;
        Settings::specimen().visit([&](const auto& setting) {
            if (setting.name() != name) return;
            read = preference(setting, tree);
            checkMeaning(setting, *read);
        });
        if (!read) fail("onbekende waarde " + jsonString(name) + " van voorkeur");
        return *std::move(read);
    } catch (const Invalid& invalid) {
        return Failure{invalid.message};
    }
}

} // namespace wegslot
