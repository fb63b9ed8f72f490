#include "update/qt/curl_http_client.h"

#include "update/qt/curl_library.h"
#include "update/qt/web_address.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace wegslot {
namespace {

constexpr long statusOk = 200;
constexpr int mostRedirects = 10;
/// In bytes, of all headers of one request with its redirects; other clients take no more of one.
constexpr std::size_t mostHeaders = std::size_t{64} * 1024;

struct EasyEnd {
    void operator()(CURL* easy) const { curl().easy_cleanup(easy); }
};
struct MultiEnd {
    void operator()(CURLM* multi) const { curl().multi_cleanup(multi); }
};
struct HeadersEnd {
    void operator()(curl_slist* headers) const { curl().slist_free_all(headers); }
};
/// Later, because it may be its own signal that ends it.
struct NotifierEnd {
    void operator()(QSocketNotifier* notifier) const {
        notifier->setEnabled(false);
        notifier->deleteLater();
    }
};

/// Only the present server's own words, in plain: what is unpacked on the way has no bound.
std::unique_ptr<curl_slist, HeadersEnd> requestHeaders() {
    curl_slist* list = nullptr;
    for (const char* const header : {
             "Cache-Control: no-cache",   // for caches on the way
             "Accept-Encoding: identity", //
             "Accept-Language: *",        // the user's own is nobody's business
         })
        list = curl().slist_append(list, header);
    return std::unique_ptr<curl_slist, HeadersEnd>(list);
}

/// One answer on its way. Cookies, caches and passwords are what libcurl does not have unless
/// asked.
class Transfer final : public QObject {
public:
    Transfer(HttpRequest request, HttpClient::Done done)
        : request_(std::move(request)),
          done_(std::move(done)) {}

    void start(Nanoseconds silence) {
        if (!isAllowedAddress(at_)) return QTimer::singleShot(0, this, [this] { refuse(); });
        prepareLoop();
        prepareRequest();
        limit(silence_, silence);
        if (request_.patience) limit(patience_, *request_.patience);
        fetch();
    }

    /// Nobody waits for it any more.
    void drop() {
        done_ = nullptr;
        refuse();
    }

private:
    void limit(QTimer& timer, Nanoseconds after) {
        timer.setSingleShot(true);
        timer.setInterval(std::chrono::ceil<std::chrono::milliseconds>(after));
        connect(&timer, &QTimer::timeout, this, [this, after] {
            const auto seconds = std::chrono::ceil<std::chrono::seconds>(after).count();
            end(Failure{message("geen antwoord binnen %1 s", {std::to_string(seconds)})});
        });
        timer.start();
    }

    template <typename Value>
    void set(CURLoption option, Value value) {
        curl().easy_setopt(easy_.get(), option, value);
    }

    void prepareLoop() {
        curl().multi_setopt(multi_.get(), CURLMOPT_SOCKETDATA, this);
        curl().multi_setopt(multi_.get(), CURLMOPT_SOCKETFUNCTION, &Transfer::watch);
        curl().multi_setopt(multi_.get(), CURLMOPT_TIMERDATA, this);
        curl().multi_setopt(multi_.get(), CURLMOPT_TIMERFUNCTION, &Transfer::wake);
        due_.setSingleShot(true);
        connect(&due_, &QTimer::timeout, this, [this] { act(CURL_SOCKET_TIMEOUT, 0); });
    }

    void prepareRequest() {
        set(CURLOPT_PROTOCOLS_STR, "http,https");
        // What bounds it is easier to see through than the frames of the second version.
        set(CURLOPT_HTTP_VERSION, long{CURL_HTTP_VERSION_1_1});
        set(CURLOPT_SSLVERSION, long{CURL_SSLVERSION_TLSv1_2});
        set(CURLOPT_USERAGENT, "Mozilla/5.0"); // of the many, not which program and version
        set(CURLOPT_HTTPHEADER, headers_.get());
        if (const char* const authorities = std::getenv("SSL_CERT_FILE");
            authorities != nullptr && *authorities != '\0') {
            set(CURLOPT_CAINFO, authorities);
            set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
        }
        // A name server that does not answer is left behind, not waited for.
        set(CURLOPT_QUICK_EXIT, 1L);
        set(CURLOPT_ERRORBUFFER, error_.data());
        set(CURLOPT_HEADERDATA, this);
        set(CURLOPT_HEADERFUNCTION, &Transfer::header);
        set(CURLOPT_WRITEDATA, this);
        set(CURLOPT_WRITEFUNCTION, &Transfer::body);
    }

    void fetch() {
        error_.front() = '\0';
        set(CURLOPT_URL, at_.c_str());
        curl().multi_add_handle(multi_.get(), easy_.get());
        silence_.start();
    }

    /// Something of the connection is due.
    void act(curl_socket_t socket, int events) {
        if ((events & CURL_CSELECT_IN) != 0) silence_.start();
        int running = 0;
        curl().multi_socket_action(multi_.get(), socket, events, &running);
        int left = 0;
        const CURLMsg* const message = curl().multi_info_read(multi_.get(), &left);
        if (message == nullptr || message->msg != CURLMSG_DONE) return;
        const CURLcode result = message->data.result;
        curl().multi_remove_handle(multi_.get(), easy_.get());
        finish(result);
    }

    void finish(CURLcode result) {
        if (isTooMuch_) return refuse();
        const long status = this->status();
        if (status == statusOk && result == CURLE_OK)
            return end(HttpResponse{statusOk, std::move(body_)});
        curl_header* location = nullptr;
        const bool leadsOn =
            status / 100 == 3 && curl().easy_header(easy_.get(), "Location", 0, CURLH_HEADER, -1,
                                                    &location) == CURLHE_OK;
        if (leadsOn && ++redirects_ <= mostRedirects) return redirect(location->value);
        // A server that says no has answered; one that stops in its answer has not.
        if (status != 0 && status != statusOk)
            return end(HttpResponse{static_cast<int>(status), {}});
        end(Failure{quoted(error_.front() != '\0' ? error_.data() : curl().easy_strerror(result),
                           result == CURLE_OPERATION_TIMEDOUT
                               ? message("de server antwoordt niet op tijd")
                               : message("geen verbinding met de server"))});
    }

    void redirect(std::string_view location) {
        const auto to = redirectedAddress(at_, location);
        const bool leavesHttps = to && isSecureAddress(at_) && !isSecureAddress(*to);
        if (!to || leavesHttps || !isAllowedAddress(*to)) return refuse();
        at_ = *to;
        fetch();
    }

    [[nodiscard]] long status() {
        long status = 0;
        curl().easy_getinfo(easy_.get(), CURLINFO_RESPONSE_CODE, &status);
        return status;
    }

    void refuse() { end(HttpResponse{}); }

    /// Once: who is told may let go of it.
    void end(Result<HttpResponse> result) {
        silence_.stop();
        patience_.stop();
        curl().multi_remove_handle(multi_.get(), easy_.get());
        if (const auto done = std::exchange(done_, nullptr)) done(std::move(result));
    }

    // What libcurl calls. Taking less than there is ends the transfer.

    static std::size_t header(const char* /*line*/, std::size_t one, std::size_t size, void* self) {
        auto& transfer = *static_cast<Transfer*>(self);
        transfer.headerBytes_ += one * size;
        transfer.isTooMuch_ = transfer.headerBytes_ > mostHeaders;
        return transfer.isTooMuch_ ? 0 : one * size;
    }

    static std::size_t body(const char* data, std::size_t one, std::size_t size, void* self) {
        return static_cast<Transfer*>(self)->take(data, one * size) ? one * size : 0;
    }

    bool take(const char* data, std::size_t size) {
        if (status() != statusOk) return false; // why a server says no is not asked
        curl_off_t said = 0;
        curl().easy_getinfo(easy_.get(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &said);
        const auto announced = static_cast<std::size_t>(std::max<curl_off_t>(said, 0));
        isTooMuch_ = std::max(announced, body_.size() + size) > request_.most;
        if (isTooMuch_) return false;
        if (body_.empty()) body_.reserve(announced);
        body_.insert(body_.end(), data, data + size);
        return true;
    }

    static int watch(CURL* /*easy*/, curl_socket_t socket, int what, void* self, void* /*own*/) {
        auto& transfer = *static_cast<Transfer*>(self);
        const bool reads = what == CURL_POLL_IN || what == CURL_POLL_INOUT;
        const bool writes = what == CURL_POLL_OUT || what == CURL_POLL_INOUT;
        transfer.listen(socket, QSocketNotifier::Read, CURL_CSELECT_IN, reads);
        transfer.listen(socket, QSocketNotifier::Write, CURL_CSELECT_OUT, writes);
        return 0;
    }

    void listen(curl_socket_t socket, QSocketNotifier::Type type, int event, bool isWanted) {
        auto& notifier = notifiers_[{socket, type}];
        if (!isWanted) return notifier.reset();
        if (notifier) return;
        notifier.reset(std::make_unique<QSocketNotifier>(socket, type).release());
        connect(notifier.get(), &QSocketNotifier::activated, this,
                [this, socket, event] { act(socket, event); });
    }

    static int wake(CURLM* /*multi*/, long milliseconds, void* self) {
        QTimer& due = static_cast<Transfer*>(self)->due_;
        if (milliseconds < 0) {
            due.stop();
        } else {
            due.start(std::chrono::milliseconds(milliseconds));
        }
        return 0;
    }

    HttpRequest request_;
    HttpClient::Done done_;
    std::string at_ = request_.url;
    std::vector<std::uint8_t> body_;
    std::size_t headerBytes_ = 0;
    int redirects_ = 0;
    bool isTooMuch_ = false;
    QTimer silence_;
    QTimer patience_;
    QTimer due_; ///< when libcurl wants to be called
    std::map<std::pair<curl_socket_t, QSocketNotifier::Type>,
             std::unique_ptr<QSocketNotifier, NotifierEnd>>
        notifiers_;
    std::array<char, CURL_ERROR_SIZE> error_{};
    std::unique_ptr<curl_slist, HeadersEnd> headers_ = requestHeaders();
    // Ended first, for both call back while they end.
    std::unique_ptr<CURLM, MultiEnd> multi_{curl().multi_init()};
    std::unique_ptr<CURL, EasyEnd> easy_{curl().easy_init()};
};

Handle saidLater(Failure failure, HttpClient::Done done) {
    const std::shared_ptr<QTimer> timer(std::make_unique<QTimer>().release(),
                                        [](QTimer* ended) { ended->deleteLater(); });
    timer->setSingleShot(true);
    QObject::connect(timer.get(), &QTimer::timeout,
                     [failure = std::move(failure), done = std::move(done)] { done(failure); });
    timer->start(0);
    return Handle{[timer] { timer->stop(); }};
}

} // namespace

std::optional<std::string> CurlHttpClient::resolve(std::string_view base,
                                                   std::string_view reference) const {
    return resolvedAddress(base, reference);
}

Handle CurlHttpClient::get(HttpRequest request, Done done) {
    if (const auto& library = CurlLibrary::loaded(); !library)
        return saidLater(library.failure(), std::move(done));
    // Later, because it may be its own slot that lets go of it.
    const auto dying = [](Transfer* transfer) { transfer->deleteLater(); };
    const std::shared_ptr<Transfer> transfer(
        std::make_unique<Transfer>(std::move(request), std::move(done)).release(), dying);
    transfer->start(silence_);
    return Handle{[transfer] { transfer->drop(); }};
}

} // namespace wegslot
