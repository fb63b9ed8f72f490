// One line of a trace taken apart: the fields of its objects, each read as a value of a certain
// type. What is missing, unknown, repeated or wrongly typed ends the reading with the fault's text.
#pragma once

#include "trace/event.h"
#include "trace/json_tree.h"
#include "trace/words.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace wegslot::trace {

/// Ends the reading of a line. Thrown and caught within the reader of traces only.
struct Invalid {
    std::string message;
};

[[noreturn]] void fail(std::string message);

/// The members of one object, each to be asked for once; what nobody asked for is a mistake.
class Fields {
public:
    /// `where` names the object in a fault; both must outlive the fields.
    Fields(const JsonNode& node, std::string_view where);

    /// Null when there is no such field.
    [[nodiscard]] const JsonNode* optional(std::string_view name);
    [[nodiscard]] const JsonNode& required(std::string_view name);

    /// To be called when all known fields have been asked for.
    void finish() const;

    /// The one field that nobody asked for.
    [[nodiscard]] std::pair<std::string_view, const JsonNode*> only();

private:
    struct Field {
        std::string_view name;
        const JsonNode* node;
        bool used;
    };

    [[nodiscard]] Field* find(std::string_view name);

    std::string_view where_;
    std::vector<Field> fields_;
};

[[nodiscard]] const std::string& text(const JsonNode& node, std::string_view what);
[[nodiscard]] bool boolean(const JsonNode& node, std::string_view what);
[[nodiscard]] const JsonNode::Array& list(const JsonNode& node, std::string_view what);
/// In seconds, rounded to whole milliseconds.
[[nodiscard]] double duration(const JsonNode& node, std::string_view what);

// One value of a field; `what` names it in a fault.

void take(const JsonNode& node, std::string_view what, bool& value);
/// Held within the range of an int: what is beyond it is out of every range of ours.
void take(const JsonNode& node, std::string_view what, int& value);
void take(const JsonNode& node, std::string_view what, Dbm& value);
void take(const JsonNode& node, std::string_view what, Uuid& value);
void take(const JsonNode& node, std::string_view what, GattUuid& value);
void take(const JsonNode& node, std::string_view what, std::vector<GattUuid>& value);
/// "2026-11-15T23:50:00Z" exactly.
void take(const JsonNode& node, std::string_view what, TimePoint& value);
void take(const JsonNode& node, std::string_view what, UserAction& value);
/// From hexadecimal text, as are the bytes of a characteristic.
void take(const JsonNode& node, std::string_view what, MakersData& value);
void take(const JsonNode& node, std::string_view what, Content& value);

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

} // namespace wegslot::trace
