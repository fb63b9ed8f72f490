// What somebody might do who holds the server, the network or the feed, but not the owner's key:
// each attempt has its message, and changes nothing. The updater with its real client, installer
// and tools, against a real server.

#include "base/qt/qt_background.h"
#include "tests/support/captured_log.h"
#include "tests/support/fake_updates.h"
#include "tests/update/published_update.h"
#include "update/linux/linux_installer.h"
#include "update/qt/curl_http_client.h"

#include <QCoreApplication>

#include <functional>
#include <variant>

using namespace wegslot;
using namespace update_state;
using namespace std::chrono_literals;

namespace {

using Lines = std::vector<std::string>;

/// The sixty seconds that a feed has may be fewer.
class HurriedClient final : public HttpClient {
public:
    [[nodiscard]] std::optional<std::string> resolve(std::string_view base,
                                                     std::string_view reference) const override {
        return client_.resolve(base, reference);
    }
    [[nodiscard]] Handle get(HttpRequest request, Done done) override {
        if (request.patience) request.patience = *request.patience / haste;
        return client_.get(std::move(request), std::move(done));
    }

    int haste = 1;

private:
    CurlHttpClient client_;
};

class AttackTest : public testing::Test {
protected:
    AttackTest() {
        makeApplication(published.app, "1.3", 26);
        makeApplication(made, "1.4", 27);
        before = contentsOf(published.app);
        image = published.imageOf(made);
    }

    Updater& make(const std::string& feed = "feed.json") {
        return updater.emplace(BundleInfo{.identifier = testIdentifier,
                                          .version = "1.3",
                                          .build = 26,
                                          .feed = published.server.https(feed),
                                          .key = published.owner.publicKey},
                               Updater::World{client, background, installer, control}, time);
    }

    void await(const std::function<bool(const Updater::State&)>& reached) {
        ASSERT_TRUE(becomesTrue([&] {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
            return reached(updater->state().get());
        }));
    }

    /// What came of a check and, if it offered something, its installation.
    std::string update(const std::string& feed = "feed.json") {
        make(feed);
        updater->check(Updater::Silent::no);
        await([](const auto& state) { return !std::holds_alternative<Checking>(state); });
        updater->install();
        await([this](const auto& state) {
            const bool works = std::holds_alternative<Downloading>(state) ||
                               std::holds_alternative<Installing>(state);
            return !works || !control.calls.empty();
        });
        const auto& state = updater->state().get();
        if (const auto* failed = std::get_if<Failed>(&state)) return failed->message.builtIn();
        if (const auto* failed = std::get_if<InstallFailed>(&state))
            return failed->message.builtIn();
        return std::holds_alternative<UpToDate>(state) ? "up to date" : "installed";
    }

    std::string update(const Release& release, const Bytes& bytes) {
        published.publish(release, bytes);
        return update();
    }

    /// Of an archive that the owner signed, so that nothing else stands in its way.
    std::string updateTo(const std::vector<TarMember>& members) {
        std::vector<TarMember> all{
            {.name = "Wegslot.app/Info.json",
             .content = R"({"CFBundleIdentifier":"nl.wegslot.Wegslot","CFBundleVersion":"27"})"},
            {.name = "Wegslot.app/wegslot",
             .content = "#!/bin/sh\necho 'wegslot 1.4 (27)'\n",
             .mode = 0755}};
        all.insert(all.end(), members.begin(), members.end());
        const Bytes bytes = zipped(tarOf(all));
        return update(published.releaseOf(bytes), bytes);
    }

    /// Of the log; nothing while there is none.
    [[nodiscard]] std::string lastLine() const {
        return log.messages.empty() ? std::string() : log.messages.back();
    }

    void expectUntouched() {
        EXPECT_EQ(contentsOf(published.app), before);
        EXPECT_EQ(published.leftovers(), Lines{});
        EXPECT_EQ(control.calls, Lines{});
        EXPECT_FALSE(std::filesystem::exists(published.app.parent_path() / "started"));
    }

    void TearDown() override {
        if (!installs) expectUntouched();
    }

    int argc = 1;
    std::string name = "attacks_test";
    char* argv[2] = {name.data(), nullptr};
    QCoreApplication application{argc, static_cast<char**>(argv)};
    PublishedUpdate published;
    std::filesystem::path made = published.home.path() / "made" / "Wegslot.app";
    std::map<std::string, std::string> before;
    Bytes image;
    bool installs = false;

    CapturedLog log;
    VirtualTime time{TimePoint{}};
    HurriedClient client;
    LinuxInstaller installer{published.app, testIdentifier, published.temporary};
    QtBackground background;
    FakeInstaller control; ///< what the application was asked
    std::optional<Updater> updater;
};

constexpr auto cannotCheck = "Kan niet controleren op updates";
constexpr auto noGoodAnswer = "Updatecontrole mislukt: Updateserver gaf geen goed antwoord";
constexpr auto damaged = "Download is beschadigd";
constexpr auto forged = "Handtekening van de update klopt niet";
constexpr auto noDownload = "Download mislukt";

} // namespace

// The scripted application would be started by the swap, and says so beside the installed one.
TEST_F(AttackTest, AnHonestReleaseIsInstalledAndItsHashMayBeInCapitals) {
    installs = true;
    auto release = published.releaseOf(image);
    std::ranges::transform(release.sha256, release.sha256.begin(),
                           [](char digit) { return static_cast<char>(std::toupper(digit)); });
    ASSERT_NE(release.sha256, published.releaseOf(image).sha256);
    EXPECT_EQ(update(release, image), "installed");
    EXPECT_EQ(control.calls, Lines{"terminate"});
    const auto started = published.app.parent_path() / "started";
    EXPECT_TRUE(becomesTrue([&started] { return std::filesystem::exists(started); }));
    EXPECT_EQ(contentsOf(published.app), contentsOf(made));
    EXPECT_TRUE(becomesTrue([this] { return published.leftovers().empty(); }));
}

TEST_F(AttackTest, AnotherImageThanTheHashSays) {
    auto release = published.releaseOf(image);
    release.sha256.front() = release.sha256.front() == '0' ? '1' : '0';
    EXPECT_EQ(update(release, image), damaged);
}

TEST_F(AttackTest, ATruncatedImage) {
    const auto release = published.releaseOf(image);
    EXPECT_EQ(update(release, Bytes(image.begin(), image.end() - 1)), damaged);
    EXPECT_EQ(update(release, {}), damaged);
}

TEST_F(AttackTest, AnImageThatAnotherKeySigned) {
    auto release = published.releaseOf(image);
    release.signature = Signer().sign(image);
    EXPECT_EQ(update(release, image), forged);
}

TEST_F(AttackTest, ASignatureOverTheHashText) {
    auto release = published.releaseOf(image);
    release.signature = published.owner.sign(Bytes(release.sha256.begin(), release.sha256.end()));
    EXPECT_EQ(update(release, image), forged);
}

TEST_F(AttackTest, AnotherImageWithItsHashAndTheOldSignature) {
    auto release = published.releaseOf(image);
    Bytes other = image;
    other.push_back(0);
    release.sha256 = sha256(other);
    EXPECT_EQ(update(release, other), forged);
}

TEST_F(AttackTest, AnAppOfAnotherIdentity) {
    makeApplication(made, "1.4", 27, "", "nl.wegslot.Other");
    const Bytes other = published.imageOf(made);
    EXPECT_EQ(update(published.releaseOf(other), other), unexpectedApp());
}

TEST_F(AttackTest, AnAppOfAnotherBuildThanTheFeedSays) {
    for (const int build : {25, 26, 28}) {
        makeApplication(made, "1.4", build);
        const Bytes other = published.imageOf(made);
        EXPECT_EQ(update(published.releaseOf(other), other), unexpectedApp()) << build;
    }
}

TEST_F(AttackTest, AnOlderBuildThatWasSignedOnce) {
    makeApplication(made, "1.2", 25);
    const Bytes old = published.imageOf(made);
    auto release = published.releaseOf(old);
    release.build = 25;
    EXPECT_EQ(update(release, old), "up to date");
}

TEST_F(AttackTest, AProgramThatAnswersOtherwiseOrNotAtAll) {
    for (const char* const body : {"echo wegslot 1.4", "exit 1", "sleep 1000"}) {
        writeText(made / programFile, std::string("#!/bin/sh\n") + body + "\n");
        const Bytes other = published.imageOf(made);
        EXPECT_EQ(update(published.releaseOf(other), other), unexpectedApp()) << body;
    }
}

TEST_F(AttackTest, MembersThatLeaveTheFolder) {
    for (const char* const path : {"Wegslot.app/../../../escaped", "/tmp/escaped", "../escaped"})
        EXPECT_EQ(updateTo({{.name = path}}), unexpectedApp()) << path;
    EXPECT_EQ(updateTo({{.name = "Wegslot.app/out", .type = '2', .link = "../.."},
                        {.name = "Wegslot.app/out/escaped"}}),
              unexpectedApp());
    EXPECT_EQ(updateTo({{.name = "Wegslot.app/hard", .type = '1', .link = "/etc/passwd"}}),
              unexpectedApp());
    for (const auto& entry : std::filesystem::recursive_directory_iterator(published.home.path()))
        EXPECT_NE(entry.path().filename(), "escaped");
}

TEST_F(AttackTest, MembersThatAreNoOrdinaryFiles) {
    for (const char type : {'3', '4', '6', '7', 'L', 'x', 'g'})
        EXPECT_EQ(updateTo({{.name = "Wegslot.app/device", .type = type}}), unexpectedApp())
            << type;
    for (const unsigned mode : {04755U, 02755U, 01777U})
        EXPECT_EQ(updateTo({{.name = "Wegslot.app/rights", .mode = mode}}), unexpectedApp())
            << mode;
}

TEST_F(AttackTest, ABomb) {
    const std::string zeros(std::size_t{64} << 20U, '\0');
    Zipper bomb(1);
    bomb.add(appMember.bytes());
    bomb.add(TarMember{.name = "Wegslot.app/Info.json", .content = "{}"}.bytes());
    for (int i = 0; i < 16; ++i)
        bomb.add(TarMember{.name = "Wegslot.app/" + std::to_string(i), .content = zeros}.bytes());
    bomb.add(tarEnd);
    const Bytes packed = bomb.finish(); // a gibibyte, and two bytes besides
    EXPECT_LT(packed.size(), 8'000'000U);
    EXPECT_EQ(update(published.releaseOf(packed), packed), unexpectedApp());
    ASSERT_GE(log.messages.size(), 2U);
    EXPECT_EQ(log.messages[log.messages.size() - 2],
              "Updatebestand geweigerd: te groot: Wegslot.app/15");
}

TEST_F(AttackTest, AnImageThatIsTooLong) {
    auto release = published.releaseOf(image);
    release.url = "announce/" + std::to_string(Updater::largestImage + 1);
    EXPECT_EQ(update(release, image), noDownload);
    EXPECT_EQ(lastLine(), "Update mislukt: Download mislukt");
}

TEST_F(AttackTest, AnImageThatIsNotThere) {
    auto release = published.releaseOf(image);
    release.url = "other.tar.gz";
    EXPECT_EQ(update(release, image), noDownload);
}

TEST_F(AttackTest, AnImageFromOffHttps) {
    auto release = published.releaseOf(image);
    release.url = "to/" + published.server.http("image.tar.gz");
    EXPECT_EQ(update(release, image), noDownload);
    release.url = "http://192.0.2.1/image.tar.gz";
    EXPECT_EQ(update(release, image), "Ongeldige downloadlink");
    release.url = published.server.http("image.tar.gz"); // not even from this machine
    EXPECT_EQ(update(release, image), "Ongeldige downloadlink");
    release.url = "file:///etc/passwd";
    EXPECT_EQ(update(release, image), "Ongeldige downloadlink");
    EXPECT_EQ(published.server.requests("image.tar.gz"), 0);
}

TEST_F(AttackTest, AFeedThatIsTooLong) {
    published.publish(published.releaseOf(image), image);
    std::string feed = published.home.read("served/feed.json");
    feed.resize(largestFeed, ' ');
    published.publishFeed(feed);
    make();
    updater->check(Updater::Silent::no);
    await([](const auto& state) { return !std::holds_alternative<Checking>(state); });
    EXPECT_TRUE(std::holds_alternative<Available>(updater->state().get()));
    published.publishFeed(feed + " ");
    EXPECT_EQ(update(), cannotCheck);
    EXPECT_EQ(lastLine(), noGoodAnswer);
    EXPECT_EQ(update("endless"), cannotCheck);
    EXPECT_EQ(lastLine(), noGoodAnswer);
}

TEST_F(AttackTest, AFeedThatDrips) {
    client.haste = 30;
    EXPECT_EQ(update("drip"), cannotCheck);
    EXPECT_EQ(lastLine(), "Updatecontrole mislukt: geen antwoord binnen 2 s");
}

TEST_F(AttackTest, AFeedFromOffHttps) {
    published.publish(published.releaseOf(image), image);
    EXPECT_EQ(update("to/" + published.server.http("feed.json")), cannotCheck);
    EXPECT_EQ(lastLine(), noGoodAnswer);
    EXPECT_EQ(published.server.requests("feed.json"), 0);
}

TEST_F(AttackTest, AServerOfAnotherName) {
    const WebServer other(published.folder);
    published.publish(published.releaseOf(image), image);
    EXPECT_EQ(update("to/" + other.https("feed.json")), cannotCheck);
    EXPECT_EQ(other.requests(""), 0);
}

TEST_F(AttackTest, FeedsThatAreNone) {
    const auto feed = [this](const std::string& build) {
        const auto release = published.releaseOf(image);
        published.publish(release, image);
        std::string text = published.home.read("served/feed.json");
        const std::string number = "\"build\":27";
        text.replace(text.find(number), number.size(), "\"build\":" + build);
        return text;
    };
    for (const std::string& text :
         {std::string("<html>"), std::string(), std::string(500'000, '['),
          R"({"a":)" + std::string(400'000, '[') + std::string(400'000, ']') + "}", feed("\"27\""),
          feed("27.5"), feed("1e3"), feed("99999999999999999999"), feed("null"), feed("true"),
          std::string("[]"), std::string("\xFF\xFE")}) {
        published.publishFeed(text);
        EXPECT_EQ(update(), cannotCheck) << text.substr(0, 200);
        EXPECT_TRUE(lastLine().starts_with("Updatecontrole mislukt: "));
    }
}
