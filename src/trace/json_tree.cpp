#include "trace/json_tree.h"

#include <nlohmann/json.hpp>

#include <limits>

namespace wegslot {
namespace {

// Receives the parser's events and builds the tree. The parser calls its methods by name.
class TreeBuilder {
public:
    JsonNode root;

    bool null() { return add({nullptr}); }

    bool boolean(bool value) { return add({value}); }

    bool number_integer(std::int64_t value) { return add({JsonNode::Integer{value}}); }

    bool number_unsigned(std::uint64_t value) {
        if (value > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
            return add({JsonNode::Real{static_cast<double>(value), std::to_string(value)}});
        return add({JsonNode::Integer{static_cast<std::int64_t>(value)}});
    }

    bool number_float(double value, const std::string& text) {
        return add({JsonNode::Real{value, text}});
    }

    bool string(std::string& value) { return add({std::move(value)}); }

    bool binary(nlohmann::json::binary_t&) { return false; }

    bool start_object(std::size_t) { return open({JsonNode::Object{}}); }

    bool key(std::string& name) {
        name_ = std::move(name);
        return true;
    }

    bool end_object() { return close(); }

    bool start_array(std::size_t) { return open({JsonNode::Array{}}); }

    bool end_array() { return close(); }

    bool parse_error(std::size_t, const std::string&, const nlohmann::json::exception&) {
        return false;
    }

private:
    static constexpr std::size_t deepest = 16;

    JsonNode& place(JsonNode node) {
        if (open_.empty()) return root = std::move(node);
        if (auto* const object = std::get_if<JsonNode::Object>(&open_.back()->value))
            return object->emplace_back(JsonMember{std::move(name_), std::move(node)}).node;
        return std::get<JsonNode::Array>(open_.back()->value).emplace_back(std::move(node));
    }

    bool add(JsonNode node) {
        place(std::move(node));
        return true;
    }

    bool open(JsonNode node) {
        if (open_.size() == deepest) return false;
        // A parent's list does not grow while one of its children is open, so this stays put.
        open_.push_back(&place(std::move(node)));
        return true;
    }

    bool close() {
        open_.pop_back();
        return true;
    }

    std::vector<JsonNode*> open_;
    std::string name_;
};

struct Writer {
    std::string operator()(std::nullptr_t) const { return "null"; }

    std::string operator()(bool value) const { return value ? "true" : "false"; }

    std::string operator()(const JsonNode::Integer& integer) const {
        return std::to_string(integer.value);
    }

    std::string operator()(const JsonNode::Real& real) const { return real.text; }

    std::string operator()(const std::string& text) const { return jsonString(text); }

    std::string operator()(const JsonNode::Array& array) const {
        std::string list;
        for (const JsonNode& node : array)
            list += (list.empty() ? "" : ",") + written(node);
        return "[" + list + "]";
    }

    std::string operator()(const JsonNode::Object& object) const {
        std::string list;
        for (const auto& [name, node] : object)
            list += (list.empty() ? "" : ",") + jsonString(name) + ":" + written(node);
        return "{" + list + "}";
    }
};

} // namespace

std::string written(const JsonNode& node) { return std::visit(Writer{}, node.value); }

std::string jsonString(std::string_view text) {
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::optional<double> JsonNode::number() const {
    if (const auto* const integer = as<Integer>()) return static_cast<double>(integer->value);
    if (const auto* const real = as<Real>()) return real->value;
    return std::nullopt;
}

std::optional<JsonNode> parseJson(std::string_view text) {
    TreeBuilder builder;
    if (!nlohmann::json::sax_parse(text, &builder)) return std::nullopt;
    return std::move(builder.root);
}

} // namespace wegslot
