// The port through which releases are fetched. Bounds are kept while an answer is being read: what
// breaks them is dropped, so that no server can make us keep more than we asked for.
#pragma once

#include "base/handle.h"
#include "base/result.h"
#include "base/time.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace wegslot {

/// How long a server may say nothing at all, at any point of an answer.
inline constexpr Nanoseconds httpSilence = std::chrono::seconds(15);

struct HttpRequest {
    std::string url;
    /// In bytes, of the answer's body.
    std::size_t most = 0;
    /// Until the whole answer is there; none for as long as it goes on.
    std::optional<Nanoseconds> patience;
};

struct HttpResponse {
    /// Stands for an answer that was not taken: over the bounds, or led away from https.
    static constexpr int refused = 0;

    int status = refused;
    std::vector<std::uint8_t> body; ///< of status 200 only
};

class HttpClient {
public:
    using Done = std::function<void(Result<HttpResponse>)>;

    HttpClient() = default;
    HttpClient(const HttpClient&) = delete;
    HttpClient& operator=(const HttpClient&) = delete;
    virtual ~HttpClient() = default;

    /// The address that `reference` names when read in the document at `base` (RFC 3986, 5.2), or
    /// by itself when `base` is empty. Nothing for what does not form one.
    [[nodiscard]] virtual std::optional<std::string> resolve(std::string_view base,
                                                             std::string_view reference) const = 0;

    /// GETs from the server itself, never from a cache. Plain http goes to this machine only.
    /// `done` is called once, later, unless the handle has ended; a failure describes what the
    /// network did, for a person.
    [[nodiscard]] virtual Handle get(HttpRequest request, Done done) = 0;
};

} // namespace wegslot
