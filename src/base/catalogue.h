// The translations of one language, as msgfmt compiles them (GNU gettext's MO files). Read here and
// not by the C library, which picks by locales that must have been generated on the machine: see
// docs/decisions/0036-languages.md.
#pragma once

#include "base/result.h"
#include "base/translation.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace wegslot {

class Catalogue final : public Translations {
public:
    /// `bytes`: of a file in the byte order of this machine.
    [[nodiscard]] static Result<Catalogue> read(std::string_view bytes);

    [[nodiscard]] std::optional<std::string> find(std::string_view text) const override;
    [[nodiscard]] std::optional<std::string> find(std::string_view one,
                                                  unsigned long count) const override;

private:
    Catalogue() = default;

    /// By the text, or the first of its forms: the forms in this language, never none.
    std::map<std::string, std::vector<std::string>, std::less<>> texts_;
    std::string pluralRule_ = "n != 1"; ///< in C, of the number n, as the catalogue's head has it
};

/// What `rule`, an expression of C in the number n without assignments or calls, comes to. Nothing
/// for one that is none, divides by zero or is nested deeper than 50.
[[nodiscard]] std::optional<unsigned long> evaluated(std::string_view rule, unsigned long n);

} // namespace wegslot
