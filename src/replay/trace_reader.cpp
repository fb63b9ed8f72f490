#include "replay/trace_reader.h"

#include "model/settings.h"
#include "replay/json_tree.h"
#include "replay/trace_fields.h"
#include "replay/trace_names.h"

#include <charconv>
#include <utility>

namespace wegslot {
namespace {

using namespace trace;

// Preferences.

/// Reads a value of the kind that a preference has by default.
struct ReadLike {
    const JsonNode& node;
    std::string_view name;

    PreferenceValue operator()(bool) const { return boolean(node, name); }
    PreferenceValue operator()(double) const { return duration(node, name).count(); }
    PreferenceValue operator()(const std::string&) const { return text(node, name); }
    PreferenceValue operator()(const Data&) const {
        if (node.as<JsonNode::Array>() == nullptr) fail(std::string(name) + " is geen lijst");
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

void checkMeaning(const Preferences& values) {
    Settings::specimen().visit([&values](const auto& setting) {
        const auto found = values.find(setting.name());
        if (found != values.end()) checkMeaning(setting, found->second);
    });
}

trace::SettingsChange settings(const JsonNode& node) {
    Fields fields(node, "settings");
    trace::SettingsChange change;
    Settings::specimen().visit([&](const auto& setting) {
        if (const JsonNode* const value = fields.optional(setting.name()))
            change.values.emplace(setting.name(), preference(setting, *value));
    });
    fields.finish();
    return change;
}

// Events with fields of their own.

trace::RadioState radioState(Fields& fields) {
    trace::RadioState event{.state =
                                oneOf(states, text(fields.required("state"), "state"), "state"),
                            .authorization = std::nullopt};
    if (const auto authorization = optionalText(fields, "authorization"))
        event.authorization = oneOf(authorizations, *authorization, "authorization");
    return event;
}

Uuid id(Fields& fields, std::string_view name = "id") { return uuid(fields.required(name), name); }

trace::Heard heard(Fields& fields) {
    trace::Heard event{.id = id(fields),
                       .rssi = integer(fields.required("rssi"), "rssi"),
                       .name = optionalText(fields, "name"),
                       .localName = optionalText(fields, "localName"),
                       .manufacturerData = std::nullopt};
    if (const JsonNode* const data = fields.optional("manufacturerData"))
        event.manufacturerData = bytes(*data, "manufacturerData");
    return event;
}

trace::RssiRead rssiRead(Fields& fields) {
    trace::RssiRead event{.id = id(fields), .rssi = std::nullopt};
    const auto error = optionalText(fields, "error");
    const JsonNode* const rssi = fields.optional("rssi");
    if (error.has_value() == (rssi != nullptr))
        fail("rssiRead heeft precies een van rssi en error");
    if (rssi != nullptr) event.rssi = integer(*rssi, "rssi");
    return event;
}

trace::Characteristics characteristics(Fields& fields) {
    static_cast<void>(text(fields.required("service"), "service"));
    return {.id = id(fields), .characteristics = optionalGattUuids(fields, "characteristics")};
}

trace::Value value(Fields& fields) {
    trace::Value event{.id = id(fields),
                       .characteristic =
                           gattUuid(fields.required("characteristic"), "characteristic"),
                       .value = std::nullopt,
                       .name = optionalText(fields, "name")};
    if (const JsonNode* const node = fields.optional("value")) {
        const auto decoded = bytes(*node, "value");
        event.value.emplace(decoded.begin(), decoded.end());
    }
    return event;
}

trace::Disconnected disconnected(Fields& fields) {
    return {.id = id(fields), .error = optionalText(fields, "error")};
}

trace::ConnectFailed connectFailed(Fields& fields) {
    static_cast<void>(optionalText(fields, "error"));
    return {.id = id(fields)};
}

trace::SetThreshold setThreshold(Fields& fields) {
    return {.id = id(fields), .value = Dbm{number(fields.required("value"), "value")}};
}

trace::Event action(const JsonNode& node) {
    if (const auto* const name = node.as<std::string>()) {
        if (*name == "lockNow") return trace::LockNow{};
        if (*name == "resume") return trace::Resume{};
        if (*name == "cancelWarning") return trace::CancelWarning{};
        fail("onbekende actie " + jsonString(*name));
    }
    Fields fields(node, "action");
    const Seconds length = duration(fields.required("pause"), "pause");
    fields.finish();
    return trace::Pause{length};
}

trace::Event show(const JsonNode& node) {
    const std::string& what = text(node, "show");
    if (what == "snapshot") return trace::ShowSnapshot{};
    if (what == "keys") return trace::ShowKeys{};
    fail("onbekende waarde " + jsonString(what) + " van show");
}

trace::Session session(const JsonNode& node) {
    const std::string& state = text(node, "session");
    if (state == "locked") return {SessionEvent::locked};
    if (state == "unlocked") return {SessionEvent::unlocked};
    fail("onbekende waarde " + jsonString(state) + " van session");
}

trace::Microphone microphone(const JsonNode& node) {
    if (node.as<std::nullptr_t>() != nullptr) return {std::nullopt};
    return {text(node, "microphone")};
}

/// An event without content, written as true.
template <typename Event>
trace::Event bare(const JsonNode& node, std::string_view what) {
    if (!boolean(node, what)) fail(std::string(what) + " kan alleen true zijn");
    return Event{};
}

template <typename T, std::size_t size>
T digits(const std::string& written, std::size_t start, const char (&)[size]) {
    T value{};
    const char* const first = written.data() + start;
    if (std::from_chars(first, first + size - 1, value).ptr != first + size - 1)
        fail("start is geen tijdstip: " + jsonString(written));
    return value;
}

// "2026-11-15T23:50:00Z" exactly.
trace::Start start(const JsonNode& node) {
    const std::string& written = text(node, "start");
    std::string shape = written;
    for (char& character : shape)
        if (character >= '0' && character <= '9') character = '0';
    if (shape != "0000-00-00T00:00:00Z") fail("start is geen tijdstip: " + jsonString(written));

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
    if (!date.ok() || !inRange) fail("start is geen tijdstip: " + jsonString(written));
    return {std::chrono::sys_days{date} + hours + minutes + seconds};
}

template <typename Event>
trace::Event withFields(const JsonNode& node, std::string_view name, Event (*read)(Fields&)) {
    Fields fields(node, name);
    trace::Event event = read(fields);
    fields.finish();
    return event;
}

trace::Event event(std::string_view name, const JsonNode& node) {
    if (name == "advertisement") return withFields(node, name, heard);
    if (name == "start") return start(node);
    if (name == "settings") return settings(node);
    if (name == "bluetooth") return withFields(node, name, radioState);
    if (name == "known")
        return withFields(
            node, name, +[](Fields& fields) {
                return trace::Known{.id = id(fields), .name = optionalText(fields, "name")};
            });
    if (name == "connected")
        return withFields(
            node, name, +[](Fields& fields) { return trace::Connected{id(fields)}; });
    if (name == "connectFailed") return withFields(node, name, connectFailed);
    if (name == "disconnected") return withFields(node, name, disconnected);
    if (name == "rssiRead") return withFields(node, name, rssiRead);
    if (name == "services")
        return withFields(
            node, name, +[](Fields& fields) {
                return trace::Services{id(fields), optionalGattUuids(fields, "services")};
            });
    if (name == "characteristics") return withFields(node, name, characteristics);
    if (name == "value") return withFields(node, name, value);
    if (name == "session") return session(node);
    if (name == "input") return bare<trace::Input>(node, name);
    if (name == "camera") return trace::Camera{boolean(node, name)};
    if (name == "microphone") return microphone(node);
    if (name == "addKey") return trace::AddKey{uuid(node, name)};
    if (name == "removeKey") return trace::RemoveKey{uuid(node, name)};
    if (name == "setThreshold") return withFields(node, name, setThreshold);
    if (name == "discovery") return trace::Discovery{boolean(node, name)};
    if (name == "action") return action(node);
    if (name == "show") return show(node);
    if (name == "identity")
        return withFields(
            node, name, +[](Fields& fields) {
                return trace::Identity{.from = id(fields, "from"), .to = id(fields, "to")};
            });
    if (name == "end") return bare<trace::End>(node, name);
    fail("onbekende gebeurtenis " + jsonString(name));
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
            if (!stored) checkMeaning(change->values);
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
