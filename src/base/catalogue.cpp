#include "base/catalogue.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace wegslot {
namespace {

struct Operator {
    std::string_view sign;
    int strength; ///< binds the more tightly the higher
    unsigned long (*apply)(unsigned long, unsigned long);
};

using Number = unsigned long;

// Two operators that begin alike stand with the longer one first.
constexpr std::array operators{
    Operator{"||", 1, [](Number a, Number b) { return Number{a != 0 || b != 0}; }},
    Operator{"&&", 2, [](Number a, Number b) { return Number{a != 0 && b != 0}; }},
    Operator{"==", 3, [](Number a, Number b) { return Number{a == b}; }},
    Operator{"!=", 3, [](Number a, Number b) { return Number{a != b}; }},
    Operator{"<=", 4, [](Number a, Number b) { return Number{a <= b}; }},
    Operator{">=", 4, [](Number a, Number b) { return Number{a >= b}; }},
    Operator{"<", 4, [](Number a, Number b) { return Number{a < b}; }},
    Operator{">", 4, [](Number a, Number b) { return Number{a > b}; }},
    Operator{"+", 5, [](Number a, Number b) { return a + b; }},
    Operator{"-", 5, [](Number a, Number b) { return a - b; }},
    Operator{"*", 6, [](Number a, Number b) { return a * b; }},
    Operator{"/", 6, [](Number a, Number b) { return a / b; }},
    Operator{"%", 6, [](Number a, Number b) { return a % b; }}};

class Expression {
public:
    Expression(std::string_view rest, Number n) : rest_(rest), n_(n) {}

    std::optional<Number> whole() {
        const auto value = choice();
        skipBlanks();
        return rest_.empty() ? value : std::nullopt;
    }

private:
    /// What `parse` reads, one level further in.
    std::optional<Number> deeper(std::optional<Number> (Expression::*parse)()) {
        constexpr int deepest = 50;
        if (depth_ == deepest) return std::nullopt;
        ++depth_;
        const auto value = (this->*parse)();
        --depth_;
        return value;
    }
    std::optional<Number> choice() {
        const auto condition = binary(1);
        if (!condition || !take("?")) return condition;
        const auto yes = deeper(&Expression::choice);
        if (!take(":")) return std::nullopt;
        const auto no = deeper(&Expression::choice);
        return *condition != 0 ? yes : no;
    }
    std::optional<Number> binary(int strength) {
        auto left = operand();
        while (left) {
            const Operator* const next = operatorOf(strength);
            if (next == nullptr) return left;
            rest_.remove_prefix(next->sign.size());
            const auto right = binary(next->strength + 1);
            const bool divides = next->sign == "/" || next->sign == "%";
            if (!right || (divides && *right == 0)) return std::nullopt;
            left = next->apply(*left, *right);
        }
        return left;
    }
    std::optional<Number> operand() {
        if (take("!")) {
            const auto value = deeper(&Expression::operand);
            return value ? std::optional<Number>(*value == 0) : std::nullopt;
        }
        if (take("(")) {
            const auto value = deeper(&Expression::choice);
            return take(")") ? value : std::nullopt;
        }
        if (take("n")) return n_;
        std::optional<Number> number;
        for (; !rest_.empty() && rest_.front() >= '0' && rest_.front() <= '9';
             rest_.remove_prefix(1))
            number = number.value_or(0) * 10 + static_cast<Number>(rest_.front() - '0');
        return number;
    }
    /// The operator that comes next, if it binds at least that tightly.
    const Operator* operatorOf(int strength) {
        skipBlanks();
        const auto found = std::ranges::find_if(
            operators, [this](const Operator& known) { return rest_.starts_with(known.sign); });
        return found == operators.end() || found->strength < strength ? nullptr : &*found;
    }
    bool take(std::string_view sign) {
        skipBlanks();
        if (!rest_.starts_with(sign)) return false;
        rest_.remove_prefix(sign.size());
        return true;
    }
    void skipBlanks() {
        while (!rest_.empty() && rest_.front() == ' ')
            rest_.remove_prefix(1);
    }

    std::string_view rest_;
    Number n_;
    int depth_ = 0;
};

/// "...; plural=n > 1;" among the lines at the head of a catalogue.
std::optional<std::string_view> pluralRuleIn(std::string_view head) {
    constexpr std::string_view key = "plural=";
    const auto line = head.find("Plural-Forms:");
    const auto begin = line == std::string_view::npos ? line : head.find(key, line);
    if (begin == std::string_view::npos) return std::nullopt;
    const auto rule = head.substr(begin + key.size());
    return rule.substr(0, rule.find_first_of(";\n"));
}

std::vector<std::string> formsIn(std::string_view text) {
    std::vector<std::string> forms;
    for (auto end = text.find('\0'); end != std::string_view::npos; end = text.find('\0')) {
        forms.emplace_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    forms.emplace_back(text);
    return forms;
}

class Bytes {
public:
    explicit Bytes(std::string_view bytes) : bytes_(bytes) {}

    [[nodiscard]] std::optional<std::uint32_t> word(std::size_t at) const {
        std::uint32_t word = 0;
        if (at > bytes_.size() || bytes_.size() - at < sizeof word) return std::nullopt;
        std::memcpy(&word, bytes_.data() + at, sizeof word);
        return word;
    }
    /// Of the length and at the place that the two words at `entry` say.
    [[nodiscard]] std::optional<std::string_view> text(std::size_t entry) const {
        const auto length = word(entry);
        const auto at = word(entry + 4);
        if (!length || !at || *at > bytes_.size() || bytes_.size() - *at < *length)
            return std::nullopt;
        return bytes_.substr(*at, *length);
    }

private:
    std::string_view bytes_;
};

} // namespace

std::optional<unsigned long> evaluated(std::string_view rule, unsigned long n) {
    return Expression(rule, n).whole();
}

Result<Catalogue> Catalogue::read(std::string_view bytes) {
    constexpr std::uint32_t magic = 0x950412DE; // of the format, in the writer's byte order
    constexpr std::size_t entrySize = 8;
    const Bytes file(bytes);
    if (file.word(0) != magic) return Failure{"geen catalogus"};
    const auto count = file.word(8);
    const auto originals = file.word(12);
    const auto translations = file.word(16);
    if (!count || !originals || !translations) return Failure{"catalogus te kort"};
    Catalogue catalogue;
    for (std::size_t i = 0; i < *count; ++i) {
        const auto original = file.text(*originals + i * entrySize);
        const auto translation = file.text(*translations + i * entrySize);
        if (!original || !translation) return Failure{"catalogus te kort"};
        if (original->empty()) {
            if (const auto rule = pluralRuleIn(*translation)) catalogue.pluralRule_ = *rule;
            continue;
        }
        catalogue.texts_.emplace(original->substr(0, original->find('\0')), formsIn(*translation));
    }
    return catalogue;
}

std::optional<std::string> Catalogue::find(std::string_view text) const {
    const auto found = texts_.find(text);
    return found == texts_.end() ? std::nullopt : std::optional(found->second.front());
}

std::optional<std::string> Catalogue::find(std::string_view one, unsigned long count) const {
    const auto found = texts_.find(one);
    const auto form = evaluated(pluralRule_, count);
    if (found == texts_.end() || !form || *form >= found->second.size()) return std::nullopt;
    return found->second[*form];
}

} // namespace wegslot
