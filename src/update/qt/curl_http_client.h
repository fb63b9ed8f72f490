// HTTPS by libcurl, driven by Qt's event loop: nothing here waits, looking up a name included. It
// trusts what the system trusts or, as other programs do, only what the file trusts that
// SSL_CERT_FILE names in the environment; goes through the proxies named there.
#pragma once

#include "base/time.h"
#include "update/http_client.h"

namespace wegslot {

class CurlHttpClient final : public HttpClient {
public:
    /// `silence`: how long a server may say nothing.
    explicit CurlHttpClient(Nanoseconds silence = httpSilence) : silence_(silence) {}

    [[nodiscard]] std::optional<std::string> resolve(std::string_view base,
                                                     std::string_view reference) const override;
    [[nodiscard]] Handle get(HttpRequest request, Done done) override;

private:
    Nanoseconds silence_;
};

} // namespace wegslot
