#include "identity/stored_identities.h"

#include "base/text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string_view>

namespace wegslot {
namespace {

using Json = nlohmann::ordered_json;

constexpr int version = 1;
constexpr std::string_view field = "\"irk\"";

/// What stands for the secret at `place` in a list: its place, in as many digits.
std::string numbered(std::size_t place) {
    const std::string number = std::to_string(place);
    return std::string(IdentityKey::digits - number.size(), '0') + number;
}

/// The place of the first sign of the text behind each `"irk":`.
std::vector<std::size_t> secretsIn(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    std::vector<std::size_t> places;
    std::size_t at = text.find(field);
    for (; at != std::string_view::npos; at = text.find(field, at + 1)) {
        std::size_t place = text.find_first_not_of(blanks, at + field.size());
        if (place == std::string_view::npos || text[place] != ':') continue;
        place = text.find_first_not_of(blanks, place + 1);
        if (place != std::string_view::npos && text[place] == '"') places.push_back(place + 1);
    }
    return places;
}

/// Puts a number in the place of each secret, and hides what should have been one.
std::pmr::vector<IdentityKey> takenOutOf(std::pmr::string& text,
                                         std::pmr::memory_resource& memory) {
    std::pmr::vector<IdentityKey> keys(&memory);
    for (const std::size_t place : secretsIn(text)) {
        const std::size_t end = std::min(text.find('"', place), text.size());
        const auto key =
            IdentityKey::fromHexadecimal(std::string_view(text).substr(place, end - place));
        text.replace(place, end - place,
                     key ? numbered(keys.size()) : std::string(end - place, '?'));
        if (key) keys.push_back(*key);
    }
    return keys;
}

std::string lineOf(std::string_view text, std::size_t offset) {
    const std::string_view before = text.substr(0, std::min(offset, text.size()));
    return std::to_string(1 + std::ranges::count(before, '\n'));
}

Failure wrong(std::size_t number) {
    return Failure{message("identiteit %1: verwacht een \"name\", een \"irk\" van 32 hexadecimale "
                           "cijfers en hooguit een \"id\"",
                           {std::to_string(number)})};
}

std::optional<KnownIdentity> decoded(const Json& record,
                                     const std::pmr::vector<IdentityKey>& keys) {
    const auto text = [&record](const char* name) -> std::optional<std::string> {
        const auto found = record.find(name);
        if (found == record.end() || !found->is_string()) return std::nullopt;
        return found->get<std::string>();
    };
    if (!record.is_object()) return std::nullopt;
    const auto name = text("name");
    const auto irk = text("irk");
    if (!name || !irk) return std::nullopt;
    KnownIdentity known{.key = {}, .name = *name};
    std::size_t place = 0;
    while (place < keys.size() && numbered(place) != *irk)
        ++place;
    if (place == keys.size()) return std::nullopt;
    known.key = keys[place];
    if (!record.contains("id")) return known;
    const auto id = text("id");
    known.fixedId = id ? Uuid::parse(*id) : std::nullopt;
    return known.fixedId ? std::optional(known) : std::nullopt;
}

Result<Json> parsed(std::string_view text) {
    try {
        return Json::parse(text);
    } catch (const Json::parse_error& error) {
        // The library counts from one, up to the byte that it could not take.
        return Failure{message("regel %1: geen JSON", {lineOf(text, error.byte)})};
    } catch (const Json::exception&) {
        return Failure{message("een getal is te groot")};
    }
}

} // namespace

Result<KnownIdentities> decodeIdentities(std::pmr::string& text,
                                         std::pmr::memory_resource& memory) {
    KnownIdentities identities(&memory);
    if (text.empty()) return identities;
    const auto keys = takenOutOf(text, memory);
    const auto whole = parsed(text);
    if (!whole) return whole.failure();
    const auto said = whole->find("version");
    const bool isKnown = whole->is_object() && said != whole->end() && *said == version;
    if (!isKnown) return Failure{message("een versie die dit Wegslot niet kent")};
    const auto list = whole->find("identities");
    if (list == whole->end() || !list->is_array())
        return Failure{message("de lijst \"identities\" ontbreekt")};
    if (list->size() > Identities::most)
        return Failure{message("meer dan %1 identiteiten", {std::to_string(Identities::most)})};
    for (const Json& record : *list) {
        const auto known = decoded(record, keys);
        if (!known) return wrong(identities.size() + 1);
        identities.push_back(*known);
    }
    return identities;
}

std::pmr::string encodeIdentities(const KnownIdentities& identities,
                                  std::pmr::memory_resource& memory) {
    Json list = Json::array();
    for (const KnownIdentity& known : identities) {
        Json record;
        record["name"] = known.name;
        record["irk"] = numbered(list.size());
        if (known.fixedId) record["id"] = known.fixedId->text();
        list.push_back(std::move(record));
    }
    Json whole;
    whole["version"] = version;
    whole["identities"] = std::move(list);
    std::pmr::string text(&memory);
    text = whole.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
    std::size_t next = 0;
    for (const std::size_t place : secretsIn(text)) {
        std::pmr::string secret(&memory);
        identities[next++].key.appendHexadecimal(secret);
        text.replace(place, IdentityKey::digits, secret);
    }
    return text;
}

} // namespace wegslot
