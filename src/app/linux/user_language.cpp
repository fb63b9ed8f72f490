#include "app/linux/user_language.h"

#include "files/linux/file_content.h"

#include <array>
#include <system_error>
#include <utility>

namespace wegslot {
namespace {

namespace fs = std::filesystem;

/// In a folder that is installed whole, and under a prefix such as /usr.
std::array<fs::path, 2> foldersBeside(const fs::path& program) {
    std::error_code unknown;
    const fs::path folder = fs::canonical(program, unknown).parent_path();
    return {folder / "share/locale", folder.parent_path() / "share/locale"};
}

std::optional<Catalogue> catalogueIn(const fs::path& folder, const std::string& language) {
    const auto bytes =
        contentOf(folder / language / "LC_MESSAGES/wegslot.mo", UserLanguage::mostBytes);
    if (!bytes) return std::nullopt;
    auto catalogue = Catalogue::read(*bytes);
    return catalogue ? std::optional(*std::move(catalogue)) : std::nullopt;
}

std::optional<Catalogue> firstOf(const std::vector<std::string>& languages,
                                 const fs::path& program) {
    if (languages.empty()) return std::nullopt;
    const auto folders = foldersBeside(program);
    for (const std::string& language : languages)
        for (const fs::path& folder : folders)
            if (auto catalogue = catalogueIn(folder, language)) return catalogue;
    return std::nullopt;
}

} // namespace

UserLanguage::UserLanguage(const Variable& variable, const fs::path& program)
    : catalogue_(firstOf(languages(variable), program)),
      before_(Translations::use(catalogue_ ? &*catalogue_ : nullptr)) {}

UserLanguage::~UserLanguage() { Translations::use(before_); }

} // namespace wegslot
