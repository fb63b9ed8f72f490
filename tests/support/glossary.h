// A language of a test's own: a few words.
#pragma once

#include "base/translation.h"

#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace wegslot {

/// Translates while it lives; of a text with a count the form is the last digit.
class Glossary final : public Translations {
public:
    using Words = std::map<std::string, std::string, std::less<>>;

    Glossary(std::initializer_list<Words::value_type> words) : words_(words) {
        before_ = Translations::use(this);
    }
    Glossary(const Glossary&) = delete;
    Glossary& operator=(const Glossary&) = delete;
    ~Glossary() override { Translations::use(before_); }

    [[nodiscard]] std::optional<std::string> find(std::string_view text) const override {
        const auto found = words_.find(text);
        return found == words_.end() ? std::nullopt : std::optional(found->second);
    }
    [[nodiscard]] std::optional<std::string> find(std::string_view one,
                                                  unsigned long count) const override {
        return find(std::string(one) + "#" + std::to_string(count));
    }

private:
    Words words_;
    const Translations* before_ = nullptr;
};

} // namespace wegslot
