// HTTPS by Qt. Trusts what the system trusts or, as other programs do, only what the file trusts
// that SSL_CERT_FILE names in the environment; goes through the proxies named there.
#pragma once

#include "base/time.h"
#include "update/http_client.h"

#include <QNetworkAccessManager>

namespace wegslot {

class QtHttpClient final : public HttpClient {
public:
    /// `silence`: how long a server may say nothing.
    explicit QtHttpClient(Nanoseconds silence = httpSilence);

    [[nodiscard]] std::optional<std::string> resolve(std::string_view base,
                                                     std::string_view reference) const override;
    [[nodiscard]] Handle get(HttpRequest request, Done done) override;

private:
    QNetworkAccessManager network_;
    Nanoseconds silence_;
};

} // namespace wegslot
