// The client against a real server on loopback, encrypted and not.

#include "update/qt/curl_http_client.h"

#include "tests/support/environment.h"
#include "tests/update/hanging_names.h"
#include "tests/update/web_server.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <optional>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

class HttpClientTest : public testing::Test {
protected:
    /// What came of a request: "status N" with the body, or the failure.
    std::string get(const std::string& url, std::size_t most = 1000,
                    std::optional<Nanoseconds> patience = {}) {
        std::string told = "nothing";
        QEventLoop loop;
        handle = client->get({.url = url, .most = most, .patience = patience},
                             [&](const Result<HttpResponse>& response) {
                                 told = response ? "status " + std::to_string(response->status) +
                                                       (response->body.empty() ? "" : " ") +
                                                       std::string(response->body.begin(),
                                                                   response->body.end())
                                                 : response.failure().message.builtIn();
                                 loop.quit();
                             });
        loop.exec();
        return told;
    }

    /// How much a server that never ends had sent, each time.
    std::vector<std::size_t> sent() {
        std::vector<std::size_t> sizes;
        for (const std::string& line : server.lines())
            if (line.starts_with("sent ")) sizes.push_back(std::stoul(line.substr(5)));
        return sizes;
    }

    void trustOnly(const std::string& file) {
        environment.reset();
        environment.emplace(std::map<std::string, std::string>{
            {"SSL_CERT_FILE", file}, {"http_proxy", ""}, {"https_proxy", ""}});
    }

    void SetUp() override {
        folder.write("feed.json", "the feed");
        trustOnly(server.certificate());
    }

    int argc = 1;
    std::string name = "http_client_test";
    char* argv[2] = {name.data(), nullptr};
    QCoreApplication application{argc, static_cast<char**>(argv)};
    TemporaryFolder folder;
    WebServer server{folder.path()};
    std::optional<Environment> environment;
    std::optional<CurlHttpClient> client{std::in_place};
    Handle handle;
};

const std::string refused = "status 0";

} // namespace

TEST_F(HttpClientTest, FetchesByHttpsWhatATrustedServerSays) {
    EXPECT_EQ(get(server.https("feed.json")), "status 200 the feed");
    EXPECT_EQ(get(server.https("nothing.json")), "status 404");
    EXPECT_EQ(get(server.https("status/500")), "status 500");
    EXPECT_EQ(get(server.https("status/204")), "status 204");
}

TEST_F(HttpClientTest, AServerThatNobodyVouchesForIsNotHeard) {
    const WebServer other(folder.path());
    EXPECT_NE(get(other.https("feed.json")).find("certificate"), std::string::npos);
    EXPECT_EQ(other.requests(""), 0);
    // One that is vouched for under another name, and under another number.
    for (const char* const subject : {"DNS:updates.example", "IP:127.0.0.2"}) {
        const WebServer named(folder.path(), subject);
        trustOnly(named.certificate());
        client.emplace();
        EXPECT_NE(get(named.https("feed.json")).find("subject name"), std::string::npos) << subject;
        EXPECT_EQ(named.requests(""), 0) << subject;
    }
}

TEST_F(HttpClientTest, PlainHttpGoesToThisMachineOnly) {
    EXPECT_EQ(get(server.http("feed.json")), "status 200 the feed");
    EXPECT_EQ(get("http://192.0.2.1/feed.json"), refused);
    EXPECT_EQ(get("http://localhost.example/feed.json"), refused);
    EXPECT_EQ(get("ftp://127.0.0.1/feed.json"), refused);
    EXPECT_EQ(get("file:///etc/passwd"), refused);
}

TEST_F(HttpClientTest, FollowsWhereAServerLeadsButNeverOffHttps) {
    EXPECT_EQ(get(server.https("to/" + server.https("feed.json"))), "status 200 the feed");
    EXPECT_EQ(get(server.https("to//feed.json")), "status 200 the feed");
    EXPECT_EQ(get(server.http("to/" + server.https("feed.json"))), "status 200 the feed");
    EXPECT_EQ(get(server.http("to/" + server.http("feed.json"))), "status 200 the feed");
    EXPECT_EQ(server.requests("feed.json"), 4);
    EXPECT_EQ(get(server.https("to/" + server.http("feed.json"))), refused);
    EXPECT_EQ(get(server.http("to/http://192.0.2.1/feed.json")), refused);
    EXPECT_EQ(get(server.https("to/" + server.https("to/" + server.http("feed.json")))), refused);
    EXPECT_EQ(get(server.http("to/file:///etc/passwd")).find("status 200"), std::string::npos);
    EXPECT_EQ(server.requests("feed.json"), 4);
}

TEST_F(HttpClientTest, GoesInCirclesForAWhileOnly) {
    folder.write("x", "");
    std::string circle = server.https("feed.json");
    for (int i = 0; i < 12; ++i)
        circle = server.https("to/" + circle);
    EXPECT_EQ(get(circle).find("the feed"), std::string::npos);
}

TEST_F(HttpClientTest, AnAnswerOverItsBoundIsRefusedWhileItIsRead) {
    folder.write("big", std::string(1001, 'x'));
    EXPECT_EQ(get(server.https("big"), 1000), refused);
    EXPECT_EQ(get(server.https("big"), 1001), "status 200 " + std::string(1001, 'x'));
    EXPECT_EQ(get(server.https("big"), 1002), "status 200 " + std::string(1001, 'x'));
    // One that never ends, and one that only says that it will be long.
    EXPECT_EQ(get(server.https("endless"), 10'000'000), refused);
    EXPECT_EQ(get(server.https("announce/1001"), 1000), refused);
}

// Within moments, and not when it has filled memory: what the server could send went into buffers
// of the system's.
TEST_F(HttpClientTest, HeadersWithoutAnEndAreRefusedWhileTheyAreRead) {
    std::size_t answers = 0;
    for (const char* const kind : {"lines", "line", "interim", "trailers"}) {
        const std::string told = get(server.https(kind), 1000, 60s);
        EXPECT_EQ(told.find("geen antwoord"), std::string::npos) << kind << ": " << told;
        EXPECT_EQ(told.find("status 200"), std::string::npos) << kind << ": " << told;
        ++answers;
        ASSERT_TRUE(becomesTrue([&] { return sent().size() == answers; })) << kind;
        EXPECT_LT(sent().back(), 20'000'000U) << kind;
    }
}

TEST_F(HttpClientTest, TheHeadersOfAllRedirectsHaveOneBound) {
    EXPECT_EQ(get(server.https("heavy/" + server.https("feed.json"))), "status 200 the feed");
    EXPECT_EQ(get(server.https("heavy/" + server.https("heavy/" + server.https("feed.json")))),
              refused);
    EXPECT_EQ(server.requests("feed.json"), 1);
}

TEST_F(HttpClientTest, ALargeAnswerArrivesWhole) {
    std::string large(20'000'000, '\0');
    for (std::size_t i = 0; i < large.size(); ++i)
        large[i] = static_cast<char>('a' + i * 7 % 26 + i / 65536 % 3);
    folder.write("large", large);
    EXPECT_EQ(get(server.https("large"), large.size()), "status 200 " + large);
}

TEST_F(HttpClientTest, SilenceAtAnyPointEndsIt) {
    client.emplace(500ms);
    EXPECT_EQ(get(server.https("silent")), "geen antwoord binnen 1 s");
    EXPECT_EQ(get(server.https("stall/feed.json")), "geen antwoord binnen 1 s");
    server.program().signal(SIGSTOP); // not even a handshake
    EXPECT_EQ(get(server.https("feed.json")), "geen antwoord binnen 1 s");
    server.program().signal(SIGCONT);
    client.emplace();
    EXPECT_EQ(get(server.https("feed.json")), "status 200 the feed");
}

TEST_F(HttpClientTest, AFeedThatSaysNothingIsWaitedForFifteenSeconds) {
    EXPECT_EQ(get(server.https("silent"), 1000, 60s), "geen antwoord binnen 15 s");
}

TEST_F(HttpClientTest, ASlowDripIsNoSilenceButHasItsTime) {
    client.emplace(4s); // far longer than any machine is between two drops
    EXPECT_EQ(get(server.https("drip"), 10'000, 6s), "geen antwoord binnen 6 s");
}

TEST_F(HttpClientTest, HalfAnAnswerIsNone) {
    EXPECT_EQ(get(server.https("short/feed.json")).find("status"), std::string::npos);
    EXPECT_EQ(get(server.http("short/feed.json")).find("status"), std::string::npos);
}

TEST_F(HttpClientTest, NoCacheIsBelievedAndNoneOnTheWay) {
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(get(server.https("fresh/feed.json")), "status 200 the feed");
    EXPECT_EQ(server.requests("fresh/"), 3);
    EXPECT_TRUE(server.lines().back().ends_with(" no-cache")) << server.lines().back();
}

TEST_F(HttpClientTest, NoLanguageIsTold) {
    EXPECT_EQ(get(server.https("language")), "status 200 *");
}

TEST_F(HttpClientTest, NothingIsUnpackedOnTheWay) {
    folder.write("zeros", std::string(5'000'000, '\0'));
    const std::string got = get(server.https("packed/zeros"), 100'000);
    EXPECT_TRUE(got.starts_with("status 200 \x1f\x8b")) << got.substr(0, 40);
    EXPECT_LT(got.size(), 100'000U);
}

TEST_F(HttpClientTest, NobodyThereIsAFailureInWords) {
    const std::string url = server.https("feed.json");
    server.program().stop();
    const std::string told = get(url);
    EXPECT_NE(told, "");
    EXPECT_EQ(told.find("status"), std::string::npos) << told;
}

TEST_F(HttpClientTest, WhoLetsGoHearsNothingMore) {
    bool told = false;
    handle = client->get({.url = server.https("stall/feed.json"), .most = 1000, .patience = {}},
                         [&](const Result<HttpResponse>&) { told = true; });
    EXPECT_TRUE(becomesTrue([this] {
        QCoreApplication::processEvents();
        return server.requests("stall") == 1;
    }));
    handle.reset();
    client.emplace(500ms);
    EXPECT_EQ(get(server.https("silent")), "geen antwoord binnen 1 s");
    EXPECT_FALSE(told);
}

TEST_F(HttpClientTest, ANameServerThatHangsHoldsUpNobody) {
    const HangingNames names;
    client.emplace(500ms);
    EXPECT_EQ(get("https://wegslot.example/feed.json"), "geen antwoord binnen 1 s");
    EXPECT_TRUE(names.wereAsked());
    // Not even who lets go of it, nor the next one that is asked.
    handle.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    client.emplace();
    EXPECT_EQ(get(server.https("feed.json")), "status 200 the feed");
}

TEST_F(HttpClientTest, TheProxyOfTheEnvironmentIsUsed) {
    environment.emplace(std::map<std::string, std::string>{{"https_proxy", server.http("")}});
    EXPECT_EQ(get("https://wegslot.example/feed.json").find("status 200"), std::string::npos);
    EXPECT_EQ(server.lines().back(), "http CONNECT wegslot.example:443");
}

TEST_F(HttpClientTest, TheNextRequestMayBeginInAnAnswer) {
    std::string told;
    QEventLoop loop;
    handle = client->get({.url = server.https("feed.json"), .most = 1000, .patience = {}},
                         [&](const Result<HttpResponse>&) {
                             handle = client->get(
                                 {.url = server.https("nothing"), .most = 1000, .patience = {}},
                                 [&](const Result<HttpResponse>& second) {
                                     told = std::to_string(second->status);
                                     handle.reset();
                                     loop.quit();
                                 });
                         });
    loop.exec();
    EXPECT_EQ(told, "404");
}

TEST_F(HttpClientTest, AddressesAreResolvedAsTheStandardHasIt) {
    const auto resolved = [this](std::string_view base, std::string_view reference) {
        return client->resolve(base, reference).value_or("none");
    };
    constexpr auto feed = "https://example.org/wegslot/feed.json?x=1";
    EXPECT_EQ(resolved({}, feed), feed);
    EXPECT_EQ(resolved(feed, "a.tar.gz"), "https://example.org/wegslot/a.tar.gz");
    EXPECT_EQ(resolved(feed, "1.4/a.tar.gz"), "https://example.org/wegslot/1.4/a.tar.gz");
    EXPECT_EQ(resolved(feed, "../a.tar.gz"), "https://example.org/a.tar.gz");
    EXPECT_EQ(resolved(feed, "/a.tar.gz"), "https://example.org/a.tar.gz");
    EXPECT_EQ(resolved(feed, "//other.example/a"), "https://other.example/a");
    EXPECT_EQ(resolved(feed, "http://other.example/a"), "http://other.example/a");
    for (const char* const wrong : {"", "http://", "https://exa mple/", "https://[1::2::3]/a", "%"})
        EXPECT_EQ(resolved(feed, wrong), "none") << wrong;
    for (const char* const wrong : {"", "a.tar.gz", "/a.tar.gz", "example.org/feed.json"})
        EXPECT_EQ(resolved({}, wrong), "none") << wrong;
}
