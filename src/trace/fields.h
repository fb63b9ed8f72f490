// The fields of an object in a line of a trace. What is missing, unknown or repeated ends the
// reading of the line with the fault's text.
#pragma once

#include "trace/json_tree.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace wegslot::trace {

/// Ends the reading of a line. Caught by what reads, which makes a failure of it.
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

} // namespace wegslot::trace
