#include "update/bundle_info.h"

#include "update/base64.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>

namespace wegslot {
namespace {

using Json = nlohmann::json;

std::optional<std::string> textIn(const Json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_string()) return std::nullopt;
    return found->get<std::string>();
}

std::optional<PublicKey> publicKey(const std::string& text) {
    const auto bytes = decodeBase64(text);
    PublicKey key{};
    if (!bytes || bytes->size() != key.size()) return std::nullopt;
    std::ranges::copy(*bytes, key.begin());
    return key;
}

} // namespace

std::optional<std::int64_t> buildNumber(std::string_view text) {
    if (text.starts_with('+')) {
        text.remove_prefix(1); // which the library does not read
        if (text.starts_with('-')) return std::nullopt;
    }
    std::int64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    if (read.ec != std::errc() || read.ptr != end) return std::nullopt;
    return number;
}

std::string versionLine(std::string_view version, std::int64_t build) {
    return "wegslot " + std::string(version) + " (" + std::to_string(build) + ")";
}

std::optional<std::int64_t> buildInVersionLine(std::string_view answer) {
    const auto bracket = answer.rfind(" (");
    if (!answer.starts_with("wegslot ") || !answer.ends_with(")\n") ||
        answer.find('\n') != answer.size() - 1 || bracket == std::string_view::npos)
        return std::nullopt;
    return buildNumber(answer.substr(bracket + 2, answer.size() - 2 - (bracket + 2)));
}

BundleInfo readBundleInfo(std::string_view json) {
    BundleInfo info;
    const Json object = Json::parse(json, nullptr, false);
    if (!object.is_object()) return info;
    info.identifier = textIn(object, "CFBundleIdentifier").value_or("");
    info.version = textIn(object, "CFBundleShortVersionString").value_or("?");
    info.build = buildNumber(textIn(object, "CFBundleVersion").value_or("")).value_or(0);
    info.feed = textIn(object, "WSUpdateFeedURL").value_or("");
    if (const auto key = textIn(object, "WSUpdatePublicKey")) info.key = publicKey(*key);
    return info;
}

} // namespace wegslot
