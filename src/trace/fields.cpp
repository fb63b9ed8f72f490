#include "trace/fields.h"

#include <algorithm>

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

} // namespace wegslot::trace
