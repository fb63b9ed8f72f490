#include "trace/event_reader.h"

#include "model/settings.h"
#include "trace/fields.h"
#include "trace/words.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

namespace wegslot::trace {
namespace {

// One value; `what` names it in a fault.

const std::string& text(const JsonNode& node, std::string_view what) {
    if (const auto* const value = node.as<std::string>()) return *value;
    fail(std::string(what) + " is geen tekst");
}

bool boolean(const JsonNode& node, std::string_view what) {
    if (const auto* const value = node.as<bool>()) return *value;
    fail(std::string(what) + " is geen true of false");
}

const JsonNode::Array& list(const JsonNode& node, std::string_view what) {
    if (const auto* const value = node.as<JsonNode::Array>()) return *value;
    fail(std::string(what) + " is geen lijst");
}

double number(const JsonNode& node, std::string_view what) {
    if (const auto value = node.number()) return *value;
    fail(std::string(what) + " is geen getal");
}

/// In seconds, rounded to whole milliseconds.
double duration(const JsonNode& node, std::string_view what) {
    return toMilliseconds(Seconds{number(node, what)}).count();
}

template <typename Bytes>
Bytes hexadecimal(const JsonNode& node, std::string_view what) {
    const std::string& written = text(node, what);
    Bytes bytes;
    bytes.resize(written.size() / 2);
    bool valid = written.size() % 2 == 0;
    for (std::size_t i = 0; valid && i < bytes.size(); ++i) {
        const char* const start = written.data() + 2 * i;
        std::uint8_t byte = 0;
        valid = std::from_chars(start, start + 2, byte, 16).ptr == start + 2;
        bytes[i] = static_cast<typename Bytes::value_type>(byte);
    }
    if (!valid) fail(std::string(what) + " is geen hexadecimale tekst");
    return bytes;
}

template <typename T, std::size_t size>
T digits(const std::string& written, std::size_t start, const char (&)[size]) {
    T value{};
    const char* const first = written.data() + start;
    std::from_chars(first, first + size - 1, value);
    return value;
}

void take(const JsonNode& node, std::string_view what, bool& value) { value = boolean(node, what); }

void take(const JsonNode& node, std::string_view what, int& value) {
    const auto* const whole = node.as<JsonNode::Integer>();
    if (whole == nullptr) fail(std::string(what) + " is geen geheel getal");
    value = static_cast<int>(std::clamp<std::int64_t>(whole->value, std::numeric_limits<int>::min(),
                                                      std::numeric_limits<int>::max()));
}

void take(const JsonNode& node, std::string_view what, Dbm& value) {
    value = Dbm{number(node, what)};
}

void take(const JsonNode& node, std::string_view what, Uuid& value) {
    const std::string& written = text(node, what);
    const auto parsed = Uuid::parse(written);
    if (!parsed) fail(std::string(what) + " is geen UUID: " + jsonString(written));
    value = *parsed;
}

void take(const JsonNode& node, std::string_view what, GattUuid& value) {
    const std::string& written = text(node, what);
    std::uint32_t number = 0;
    const char* const end = written.data() + written.size();
    const auto parsed = std::from_chars(written.data(), end, number, 16);
    const bool complete = parsed.ec == std::errc{} && parsed.ptr == end;
    if (!complete || (written.size() != 4 && written.size() != 8))
        fail(std::string(what) + " is geen korte UUID: " + jsonString(written));
    value = GattUuid{number};
}

void take(const JsonNode& node, std::string_view what, std::vector<GattUuid>& value) {
    for (const JsonNode& entry : list(node, what))
        take(entry, what, value.emplace_back());
}

void take(const JsonNode& node, std::string_view what, TimePoint& value) {
    const std::string& written = text(node, what);
    std::string shape = written;
    for (char& character : shape)
        if (character >= '0' && character <= '9') character = '0';
    if (shape != "0000-00-00T00:00:00Z")
        fail(std::string(what) + " is geen tijdstip: " + jsonString(written));

    const std::chrono::year_month_day date{std::chrono::year{digits<int>(written, 0, "yyyy")},
                                           std::chrono::month{digits<unsigned>(written, 5, "mm")},
                                           std::chrono::day{digits<unsigned>(written, 8, "dd")}};
    const std::chrono::hours hours{digits<int>(written, 11, "hh")};
    const std::chrono::minutes minutes{digits<int>(written, 14, "mm")};
    const std::chrono::seconds seconds{digits<int>(written, 17, "ss")};
    // The calendar of a TimePoint ends in 2262; a trace needs room after its start.
    const bool inRange = date.year() >= std::chrono::year{1700} &&
                         date.year() < std::chrono::year{2162} && hours.count() < 24 &&
                         minutes.count() < 60 && seconds.count() < 60;
    if (!date.ok() || !inRange)
        fail(std::string(what) + " is geen tijdstip: " + jsonString(written));
    value = std::chrono::sys_days{date} + hours + minutes + seconds;
}

void take(const JsonNode& node, std::string_view what, UserAction& value) {
    if (const auto* const name = node.as<std::string>()) {
        const auto found = std::ranges::find(words<UserAction>, *name, &Word<UserAction>::first);
        if (found == words<UserAction>.end()) fail("onbekende actie " + jsonString(*name));
        value = found->second;
        return;
    }
    Fields fields(node, what);
    value = action::Pause{Seconds{duration(fields.required("pause"), "pause")}};
    fields.finish();
}

void take(const JsonNode& node, std::string_view what, MakersData& value) {
    value = hexadecimal<MakersData>(node, what);
}

void take(const JsonNode& node, std::string_view what, Content& value) {
    value = hexadecimal<Content>(node, what);
}

template <Tells tells>
void take(const JsonNode& node, std::string_view what, Text<tells>& value) {
    value = Text<tells>(text(node, what));
}

template <typename T>
requires std::is_enum_v<T>
void take(const JsonNode& node, std::string_view what, T& value) {
    const std::string& chosen = text(node, what);
    const auto found = std::ranges::find(words<T>, chosen, &Word<T>::first);
    if (found == words<T>.end())
        fail("onbekende waarde " + jsonString(chosen) + " van " + std::string(what));
    value = found->second;
}

void take(const JsonNode& node, std::string_view what, Preferences& values) {
    Fields fields(node, what);
    Settings::specimen().visit([&](const auto& setting) {
        if (const JsonNode* const value = fields.optional(setting.name()))
            values.emplace(setting.name(),
                           readPreference(setting.byDefault(), setting.name(), *value));
    });
    fields.finish();
}

template <typename T>
void take(const JsonNode& node, std::string_view what, std::optional<T>& value) {
    take(node, what, value.emplace());
}

template <typename T>
constexpr bool mayBeAbsent = false;
template <typename T>
constexpr bool mayBeAbsent<std::optional<T>> = true;
template <>
constexpr bool mayBeAbsent<std::vector<GattUuid>> = true;

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

/// Takes the fields of an event from its value.
class Take {
public:
    Take(const JsonNode& node, std::string_view event) : node_(node), event_(event) {}

    template <typename T>
    Take& operator()(std::string_view name, T& value) {
        const JsonNode* const node =
            mayBeAbsent<T> ? fields().optional(name) : &fields().required(name);
        if (node != nullptr) take(*node, name, value);
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
        if (node_.as<std::nullptr_t>() == nullptr) take(node_, event_, whole);
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
Event event(std::string_view word, const JsonNode& node) {
    if constexpr (index == std::variant_size_v<Event>) {
        fail("onbekende gebeurtenis " + jsonString(word));
    } else {
        using This = std::variant_alternative_t<index, Event>;
        if (This::word != word) return event<index + 1>(word, node);
        This read;
        Take take(node, word);
        This::fields(read, take);
        take.finish();
        return read;
    }
}

} // namespace

Event readEvent(std::string_view word, const JsonNode& node) { return event(word, node); }

PreferenceValue readPreference(const PreferenceValue& like, std::string_view name,
                               const JsonNode& node) {
    return std::visit(ReadLike{node, name}, like);
}

} // namespace wegslot::trace
