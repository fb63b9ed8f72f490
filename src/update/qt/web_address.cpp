#include "update/qt/web_address.h"

#include "update/qt/curl_library.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <cstddef>
#include <memory>

namespace wegslot {
namespace {

struct UrlEnd {
    void operator()(CURLU* url) const { curl().url_cleanup(url); }
};
using Url = std::unique_ptr<CURLU, UrlEnd>;

/// Whether somebody fetches by a scheme is another question than what it names.
constexpr unsigned anyScheme = CURLU_NON_SUPPORT_SCHEME;

std::string partOf(const Url& url, CURLUPart part) {
    char* text = nullptr;
    if (curl().url_get(url.get(), part, &text, 0) != CURLUE_OK) return {};
    const std::unique_ptr<char, decltype(&curl_free)> owned(text, curl().free);
    return owned.get();
}

/// Null for what is none.
Url parsed(std::string_view base, std::string_view reference, unsigned flags) {
    if (!CurlLibrary::loaded()) return nullptr;
    Url url(curl().url());
    for (const std::string_view text : {base, reference})
        if (!text.empty() && curl().url_set(url.get(), CURLUPART_URL, std::string(text).c_str(),
                                            anyScheme | flags) != CURLUE_OK)
            return nullptr;
    return url;
}

std::optional<std::string> joined(std::string_view base, std::string_view reference,
                                  unsigned flags) {
    if (reference.empty()) return std::nullopt;
    const Url url = parsed(base, reference, flags);
    if (!url || partOf(url, CURLUPART_HOST).empty()) return std::nullopt;
    return partOf(url, CURLUPART_URL);
}

bool isOneOf(std::string_view characters, char c) {
    return characters.find(c) != std::string_view::npos;
}

/// Only what RFC 3986 lets an address consist of.
bool isWellSpelled(std::string_view text) {
    constexpr std::string_view hex = "0123456789ABCDEFabcdef";
    constexpr std::string_view others =
        "GHIJKLMNOPQRSTUVWXYZghijklmnopqrstuvwxyz-._~:/?#[]@!$&'()*+,;=";
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%') {
            if (i + 2 >= text.size() || !isOneOf(hex, text[i + 1]) || !isOneOf(hex, text[i + 2]))
                return false;
            i += 2;
        } else if (!isOneOf(hex, text[i]) && !isOneOf(others, text[i])) {
            return false;
        }
    }
    return true;
}

bool isThisMachine(const std::string& host) {
    in_addr number{};
    if (inet_pton(AF_INET, host.c_str(), &number) == 1)
        return ntohl(number.s_addr) >> 24U == IN_LOOPBACKNET;
    return host == "localhost" || host == "[::1]";
}

} // namespace

std::optional<std::string> resolvedAddress(std::string_view base, std::string_view reference) {
    return isWellSpelled(reference) ? joined(base, reference, 0) : std::nullopt;
}

std::optional<std::string> redirectedAddress(std::string_view base, std::string_view reference) {
    return joined(base, reference, CURLU_URLENCODE);
}

bool isSecureAddress(std::string_view url) {
    const Url parts = parsed({}, url, 0);
    return parts && partOf(parts, CURLUPART_SCHEME) == "https";
}

bool isAllowedAddress(std::string_view url) {
    const Url parts = parsed({}, url, 0);
    if (!parts) return false;
    const std::string scheme = partOf(parts, CURLUPART_SCHEME);
    return scheme == "https" || (scheme == "http" && isThisMachine(partOf(parts, CURLUPART_HOST)));
}

} // namespace wegslot
