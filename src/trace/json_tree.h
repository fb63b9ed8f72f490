// One JSON text as a tree that keeps what a trace needs to judge it: the written form of a
// number, and every member in its order, repeated ones too.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace wegslot {

struct JsonMember;

struct JsonNode {
    struct Integer {
        std::int64_t value;
    };

    /// A number with a fraction or an exponent, or one too large for an Integer.
    struct Real {
        double value;
        std::string text; ///< as written
    };

    using Array = std::vector<JsonNode>;
    using Object = std::vector<JsonMember>;

    std::variant<std::nullptr_t, bool, Integer, Real, std::string, Array, Object> value;

    template <typename T>
    [[nodiscard]] const T* as() const {
        return std::get_if<T>(&value);
    }

    /// Any number as a double.
    [[nodiscard]] std::optional<double> number() const;
};

struct JsonMember {
    std::string name;
    JsonNode node;
};

/// The node as JSON text, without blanks.
[[nodiscard]] std::string written(const JsonNode& node);

/// `text` (UTF-8) as a JSON string, quotes included. Bytes that are not UTF-8 become U+FFFD.
[[nodiscard]] std::string jsonString(std::string_view text);

/// Nothing for text that is not JSON, or is nested more than 16 deep.
[[nodiscard]] std::optional<JsonNode> parseJson(std::string_view text);

} // namespace wegslot
