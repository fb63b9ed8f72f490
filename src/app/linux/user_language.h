// The language of the user who runs the program, with the catalogues that lie beside it.
#pragma once

#include "base/catalogue.h"
#include "base/language.h"

#include <filesystem>
#include <optional>

namespace wegslot {

class UserLanguage {
public:
    /// Larger is no catalogue of ours: the largest has some 60 kB.
    static constexpr std::size_t mostBytes = 1U << 20U;

    /// Has all texts translated as `variable` asks for, as long as this lives. Catalogues are in
    /// `share/locale/` in the folder of `program` or in the one above. Those that cannot be read
    /// are passed over; without any, texts are shown as they stand in the code.
    explicit UserLanguage(const Variable& variable,
                          const std::filesystem::path& program = "/proc/self/exe");
    UserLanguage(const UserLanguage&) = delete;
    UserLanguage& operator=(const UserLanguage&) = delete;
    ~UserLanguage();

private:
    std::optional<Catalogue> catalogue_;
    const Translations* before_ = nullptr;
};

} // namespace wegslot
