#include "trace/fields.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace wegslot::trace {

void fail(std::string message) { throw Invalid{std::move(message)}; }

Fields::Fields(const JsonNode& node, std::string_view where) : where_(where) {
    const auto* const object = node.as<JsonNode::Object>();
    if (object == nullptr) fail(std::string(where) + " is geen object");
    for (const auto& [name, value] : *object) {
        if (find(name) != nullptr) fail("veld " + jsonString(name) + " staat er twee keer");
        fields_.push_back({name, &value, false});
    }
}

const JsonNode* Fields::optional(std::string_view name) {
    Field* const field = find(name);
    if (field == nullptr) return nullptr;
    field->used = true;
    return field->node;
}

const JsonNode& Fields::required(std::string_view name) {
    if (const JsonNode* const node = optional(name)) return *node;
    fail("veld " + jsonString(name) + " ontbreekt in " + std::string(where_));
}

void Fields::finish() const {
    for (const Field& field : fields_)
        if (!field.used)
            fail("onbekend veld " + jsonString(field.name) + " in " + std::string(where_));
}

std::pair<std::string_view, const JsonNode*> Fields::only() {
    Field* found = nullptr;
    for (Field& field : fields_) {
        if (field.used) continue;
        if (found != nullptr)
            fail("twee gebeurtenissen: " + jsonString(found->name) + " en " +
                 jsonString(field.name));
        found = &field;
    }
    if (found == nullptr) fail("geen gebeurtenis");
    found->used = true;
    return {found->name, found->node};
}

Fields::Field* Fields::find(std::string_view name) {
    const auto found = std::ranges::find(fields_, name, &Field::name);
    return found == fields_.end() ? nullptr : &*found;
}

namespace {

double number(const JsonNode& node, std::string_view what) {
    if (const auto value = node.number()) return *value;
    fail(std::string(what) + " is geen getal");
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

} // namespace

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

double duration(const JsonNode& node, std::string_view what) {
    return toMilliseconds(Seconds{number(node, what)}).count();
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

} // namespace wegslot::trace
