#include "update/release.h"

#include "base/text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <limits>

namespace wegslot {
namespace {

using Json = nlohmann::json;

/// The value of `key` if it has the type that `isRight` asks for.
const Json* find(const Json& object, const char* key, bool (Json::*isRight)() const noexcept) {
    const auto found = object.find(key);
    return found != object.end() && ((*found).*isRight)() ? &*found : nullptr;
}

Failure wrong(const char* key) {
    return Failure{message("\"%1\" ontbreekt in de feed of klopt niet", {key})};
}

/// Whole numbers within 64 bits; neither fractions nor numbers written as text.
std::optional<std::int64_t> wholeNumber(const Json& object, const char* key) {
    const Json* const value = find(object, key, &Json::is_number_integer);
    if (value == nullptr) return std::nullopt;
    const bool tooLarge =
        value->is_number_unsigned() &&
        value->get<std::uint64_t>() > std::uint64_t{std::numeric_limits<std::int64_t>::max()};
    if (tooLarge) return std::nullopt;
    return value->get<std::int64_t>();
}

/// It is shown, and asked nothing.
bool isFitVersion(std::string_view version) {
    constexpr std::size_t longest = 64; // characters
    const auto characters = std::ranges::count_if(
        version, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; });
    return static_cast<std::size_t>(characters) <= longest && printable(version) == version;
}

} // namespace

Result<Release> readRelease(std::string_view feed) {
    const Json object = Json::parse(feed, nullptr, false);
    if (!object.is_object()) return Failure{message("de feed is geen JSON-object")};

    Release release{};
    const auto build = wholeNumber(object, "build");
    if (!build) return wrong("build");
    release.build = *build;
    struct Field {
        const char* key;
        std::string* value;
    };
    for (const auto& [key, value] :
         {Field{"version", &release.version}, Field{"url", &release.url},
          Field{"sha256", &release.sha256}, Field{"signature", &release.signature}}) {
        const Json* const text = find(object, key, &Json::is_string);
        if (text == nullptr) return wrong(key);
        *value = text->get<std::string>();
    }
    if (!isFitVersion(release.version)) return wrong("version");
    const auto notes = object.find("notes");
    if (notes == object.end() || notes->is_null()) return release;
    if (!notes->is_string()) return wrong("notes");
    release.notes = notes->get<std::string>();
    return release;
}

} // namespace wegslot
