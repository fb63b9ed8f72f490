// Addresses of the web, as libcurl reads them: the client fetches just what was judged here.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace wegslot {

/// The address that `reference` names when read in the document at `base` (RFC 3986, 5.2), or by
/// itself when `base` is empty. Nothing for what forms none, or one without a host.
[[nodiscard]] std::optional<std::string> resolvedAddress(std::string_view base,
                                                         std::string_view reference);

/// The same where a server leads: what is no character of an address is encoded, because servers
/// send spaces and letters with accents.
[[nodiscard]] std::optional<std::string> redirectedAddress(std::string_view base,
                                                           std::string_view reference);

[[nodiscard]] bool isSecureAddress(std::string_view url);

/// What is fetched without encryption could be anybody's, but for this machine's.
[[nodiscard]] bool isAllowedAddress(std::string_view url);

} // namespace wegslot
