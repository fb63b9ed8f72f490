#include "update/qt/qt_http_client.h"

#include <QFile>
#include <QHostAddress>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <chrono>
#include <memory>
#include <utility>

namespace wegslot {
namespace {

QUrl urlOf(std::string_view text) {
    return QUrl(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())),
                QUrl::StrictMode);
}

bool isSecure(const QUrl& url) { return url.scheme() == QLatin1String("https"); }

bool isThisMachine(const QString& host) {
    return host == QLatin1String("localhost") || QHostAddress(host).isLoopback();
}

/// What is fetched without encryption could be anybody's, but for this machine's.
bool isAllowed(const QUrl& url) {
    return isSecure(url) || (url.scheme() == QLatin1String("http") && isThisMachine(url.host()));
}

/// Only the present server's own words, in plain: what is unpacked on the way has no bound.
QNetworkRequest requestFor(const QUrl& url) {
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setRawHeader("Cache-Control", "no-cache"); // for caches on the way
    request.setRawHeader("Accept-Encoding", "identity");
    request.setRawHeader("Accept-Language", "*"); // the user's own is nobody's business
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::UserVerifiedRedirectPolicy);
    request.setMaximumRedirectsAllowed(10);
    const QByteArray authorities = qgetenv("SSL_CERT_FILE");
    if (!authorities.isEmpty()) {
        auto trust = QSslConfiguration::defaultConfiguration();
        trust.setCaCertificates(QSslCertificate::fromPath(QFile::decodeName(authorities)));
        request.setSslConfiguration(trust);
    }
    return request;
}

/// One answer on its way.
class Transfer final : public QObject {
public:
    Transfer(HttpRequest request, HttpClient::Done done)
        : request_(std::move(request)),
          done_(std::move(done)) {}
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;
    ~Transfer() override {
        if (reply_) reply_->deleteLater();
    }

    void start(QNetworkAccessManager& network, Nanoseconds silence) {
        if (!isAllowed(at_)) return QTimer::singleShot(0, this, [this] { end(HttpResponse{}); });
        reply_ = network.get(requestFor(at_));
        reply_->setReadBufferSize(readBuffer);
        connect(reply_, &QNetworkReply::redirected, this, [this](const QUrl& to) { redirect(to); });
        connect(reply_, &QIODevice::readyRead, this, [this] { read(); });
        connect(reply_, &QNetworkReply::finished, this, [this] { finish(); });
        // Whatever else shows that somebody is there.
        connect(reply_, &QNetworkReply::encrypted, this, [this] { silence_.start(); });
        connect(reply_, &QNetworkReply::metaDataChanged, this, [this] { silence_.start(); });
        limit(silence_, silence);
        if (request_.patience) limit(patience_, *request_.patience);
    }

    /// Nobody waits for it any more.
    void drop() {
        done_ = nullptr;
        end({HttpResponse{}});
    }

private:
    static constexpr qint64 readBuffer = 1 << 20;
    static constexpr int statusOk = 200;

    void limit(QTimer& timer, Nanoseconds after) {
        timer.setSingleShot(true);
        timer.setInterval(std::chrono::ceil<std::chrono::milliseconds>(after));
        connect(&timer, &QTimer::timeout, this, [this, after] {
            const auto seconds = std::chrono::ceil<std::chrono::seconds>(after).count();
            end(Failure{"geen antwoord binnen " + std::to_string(seconds) + " s"});
        });
        timer.start();
    }

    void redirect(const QUrl& to) {
        silence_.start();
        const QUrl from = std::exchange(at_, to);
        const bool leavesHttps = isSecure(from) && !isSecure(to);
        if (leavesHttps || !isAllowed(to)) return end(HttpResponse{});
        Q_EMIT reply_->redirectAllowed();
    }

    void read() {
        silence_.start();
        const auto announced = reply_->header(QNetworkRequest::ContentLengthHeader).toULongLong();
        const auto waiting = static_cast<std::size_t>(reply_->bytesAvailable());
        if (std::max<std::size_t>(announced, body_.size() + waiting) > request_.most)
            return end(HttpResponse{});
        if (body_.empty()) body_.reserve(announced);
        const std::size_t before = body_.size();
        body_.resize(before + waiting);
        const qint64 got = reply_->read(reinterpret_cast<char*>(body_.data() + before),
                                        static_cast<qint64>(waiting));
        body_.resize(before + static_cast<std::size_t>(std::max<qint64>(got, 0)));
    }

    void finish() {
        if (reply_->bytesAvailable() > 0) read();
        const int status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
        const bool isWhole = status == statusOk && reply_->error() == QNetworkReply::NoError;
        if (isWhole) return end(HttpResponse{status, std::move(body_)});
        // A server that says no has answered; one that stops in its answer has not.
        if (status != 0 && status != statusOk) return end(HttpResponse{status, {}});
        end(Failure{reply_->errorString().toStdString()});
    }

    /// Once: the reply has more to say while it is broken off.
    void end(Result<HttpResponse> result) {
        silence_.stop();
        patience_.stop();
        if (reply_) {
            reply_->disconnect(this);
            reply_->abort();
        }
        if (const auto done = std::exchange(done_, nullptr)) done(std::move(result));
    }

    HttpRequest request_;
    HttpClient::Done done_;
    QUrl at_ = urlOf(request_.url);
    QPointer<QNetworkReply> reply_;
    QTimer silence_;
    QTimer patience_;
    std::vector<std::uint8_t> body_;
};

} // namespace

QtHttpClient::QtHttpClient(Nanoseconds silence) : silence_(silence) {
    QNetworkProxyFactory::setUseSystemConfiguration(true);
}

std::optional<std::string> QtHttpClient::resolve(std::string_view base,
                                                 std::string_view reference) const {
    const QUrl named = urlOf(reference);
    if (reference.empty() || !named.isValid()) return std::nullopt;
    const QUrl url = base.empty() ? named : urlOf(base).resolved(named);
    if (!url.isValid() || url.isRelative() || url.host().isEmpty()) return std::nullopt;
    return url.toString(QUrl::FullyEncoded).toStdString();
}

Handle QtHttpClient::get(HttpRequest request, Done done) {
    // Later, because it may be its own slot that lets go of it.
    const auto dying = [](Transfer* transfer) { transfer->deleteLater(); };
    const std::shared_ptr<Transfer> transfer(
        std::make_unique<Transfer>(std::move(request), std::move(done)).release(), dying);
    transfer->start(network_, silence_);
    return Handle{[transfer] { transfer->drop(); }};
}

} // namespace wegslot
