#include "replay/trace_fields.h"

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

const std::string& text(const JsonNode& node, std::string_view what) {
    if (const auto* const value = node.as<std::string>()) return *value;
    fail(std::string(what) + " is geen tekst");
}

bool boolean(const JsonNode& node, std::string_view what) {
    if (const auto* const value = node.as<bool>()) return *value;
    fail(std::string(what) + " is geen true of false");
}

double number(const JsonNode& node, std::string_view what) {
    if (const auto value = node.number()) return *value;
    fail(std::string(what) + " is geen getal");
}

Seconds duration(const JsonNode& node, std::string_view what) {
    return toMilliseconds(Seconds{number(node, what)});
}

int integer(const JsonNode& node, std::string_view what) {
    const auto* const value = node.as<JsonNode::Integer>();
    if (value == nullptr) fail(std::string(what) + " is geen geheel getal");
    return static_cast<int>(std::clamp<std::int64_t>(value->value, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

Uuid uuid(const JsonNode& node, std::string_view what) {
    const std::string& written = text(node, what);
    if (const auto value = Uuid::parse(written)) return *value;
    fail(std::string(what) + " is geen UUID: " + jsonString(written));
}

GattUuid gattUuid(const JsonNode& node, std::string_view what) {
    const std::string& written = text(node, what);
    std::uint32_t value = 0;
    const char* const end = written.data() + written.size();
    const auto parsed = std::from_chars(written.data(), end, value, 16);
    const bool complete = parsed.ec == std::errc{} && parsed.ptr == end;
    if (complete && (written.size() == 4 || written.size() == 8)) return GattUuid{value};
    fail(std::string(what) + " is geen korte UUID: " + jsonString(written));
}

std::vector<std::uint8_t> bytes(const JsonNode& node, std::string_view what) {
    const std::string& written = text(node, what);
    std::vector<std::uint8_t> value(written.size() / 2);
    bool valid = written.size() % 2 == 0;
    for (std::size_t i = 0; valid && i < value.size(); ++i) {
        const char* const start = written.data() + 2 * i;
        valid = std::from_chars(start, start + 2, value[i], 16).ptr == start + 2;
    }
    if (!valid) fail(std::string(what) + " is geen hexadecimale tekst");
    return value;
}

std::optional<std::string> optionalText(Fields& fields, std::string_view name) {
    const JsonNode* const node = fields.optional(name);
    return node == nullptr ? std::nullopt : std::optional(text(*node, name));
}

std::vector<GattUuid> optionalGattUuids(Fields& fields, std::string_view name) {
    std::vector<GattUuid> list;
    const JsonNode* const node = fields.optional(name);
    if (node == nullptr) return list;
    const auto* const array = node->as<JsonNode::Array>();
    if (array == nullptr) fail(std::string(name) + " is geen lijst");
    for (const JsonNode& entry : *array)
        list.push_back(gattUuid(entry, name));
    return list;
}

} // namespace wegslot::trace
