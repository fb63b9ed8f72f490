// One line of a trace taken apart: the fields of its objects, each a value of a certain type. What
// is missing, unknown, repeated or wrongly typed ends the reading with the fault's text.
#pragma once

#include "base/time.h"
#include "base/uuid.h"
#include "replay/json_tree.h"
#include "scanner/bluetooth_central.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
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

// One value of a certain type; `what` names it in a fault.

[[nodiscard]] const std::string& text(const JsonNode& node, std::string_view what);
[[nodiscard]] bool boolean(const JsonNode& node, std::string_view what);
[[nodiscard]] double number(const JsonNode& node, std::string_view what);
/// Rounded to whole milliseconds.
[[nodiscard]] Seconds duration(const JsonNode& node, std::string_view what);
/// Held within the range of an int: what is beyond it is out of every range of ours.
[[nodiscard]] int integer(const JsonNode& node, std::string_view what);
[[nodiscard]] Uuid uuid(const JsonNode& node, std::string_view what);
[[nodiscard]] GattUuid gattUuid(const JsonNode& node, std::string_view what);
/// From hexadecimal text.
[[nodiscard]] std::vector<std::uint8_t> bytes(const JsonNode& node, std::string_view what);

[[nodiscard]] std::optional<std::string> optionalText(Fields& fields, std::string_view name);
/// Empty when absent.
[[nodiscard]] std::vector<GattUuid> optionalGattUuids(Fields& fields, std::string_view name);

/// The value that `chosen` names.
template <typename T, std::size_t size>
[[nodiscard]] T oneOf(const std::array<std::pair<std::string_view, T>, size>& choices,
                      const std::string& chosen, std::string_view what) {
    for (const auto& [name, value] : choices)
        if (name == chosen) return value;
    fail("onbekende waarde " + jsonString(chosen) + " van " + std::string(what));
}

} // namespace wegslot::trace
