#include "update/updater.h"

#include "tests/support/captured_log.h"
#include "tests/support/fake_updates.h"
#include "tests/support/signing.h"
#include "update/verify.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace wegslot;
using namespace update_state;
using namespace std::chrono_literals;

namespace {

using Lines = std::vector<std::string>;
using enum Updater::Silent;

constexpr auto feedUrl = "https://updates.example/wegslot/feed.json";
constexpr auto imageUrl = "https://updates.example/wegslot/image.tar.gz";
constexpr auto noGoodAnswer = "Updatecontrole mislukt: Updateserver gaf geen goed antwoord";

class UpdaterTest : public testing::Test {
protected:
    UpdaterTest() { http.serve(imageUrl, image); }

    Updater& make(std::int64_t build = 26) {
        return updater.emplace(
            BundleInfo{.version = "1.3", .build = build, .feed = feedUrl, .key = signer.publicKey},
            Updater::World{http, background, installer, installer}, time);
    }

    /// What the feed says of the image, unless a test changes it.
    [[nodiscard]] Release release() const {
        const std::vector<std::uint8_t> bytes(image.begin(), image.end());
        return {.version = "1.4",
                .build = 27,
                .url = "image.tar.gz",
                .sha256 = sha256(bytes),
                .signature = signer.sign(bytes),
                .notes = std::nullopt};
    }

    void publish(const Release& release) {
        http.serve(feedUrl, R"({"version":")" + release.version + R"(","build":)" +
                                std::to_string(release.build) + R"(,"url":")" + release.url +
                                R"(","sha256":")" + release.sha256 + R"(","signature":")" +
                                release.signature + R"("})");
    }

    void check(Updater::Silent silent = no) {
        updater->check(silent);
        time.advance(2s);
    }

    /// Offers the release and installs it; answers what came of it.
    std::string install(const Release& release) {
        make();
        publish(release);
        check();
        updater->install();
        time.advance(10s);
        const auto* const failed = std::get_if<InstallFailed>(&state());
        return failed == nullptr ? "" : failed->message.builtIn();
    }

    [[nodiscard]] const Updater::State& state() const { return updater->state().get(); }

    [[nodiscard]] Lines linesOf(std::string_view start) const {
        Lines lines;
        std::ranges::copy_if(log.messages, std::back_inserter(lines),
                             [start](const auto& line) { return line.starts_with(start); });
        return lines;
    }

    const std::string image = "the bytes of an image";
    Signer signer;
    VirtualTime time{TimePoint{}};
    CapturedLog log;
    FakeHttp http{time};
    FakeBackground background{time};
    FakeInstaller installer;
    std::optional<Updater> updater;
};

} // namespace

TEST_F(UpdaterTest, ANewerBuildIsOffered) {
    make();
    publish(release());
    EXPECT_EQ(state(), Updater::State(Idle{}));
    updater->check(no);
    EXPECT_EQ(state(), Updater::State(Checking{}));
    time.advance(2s);
    EXPECT_EQ(state(), Updater::State(Available{release()}));
    EXPECT_EQ(log.messages, Lines{"Update beschikbaar: 1.4 (27)"});
    ASSERT_EQ(http.requests.size(), 1U);
    EXPECT_EQ(http.requests[0].url, feedUrl);
    EXPECT_EQ(http.requests[0].most, 1'048'576U);
    EXPECT_EQ(http.requests[0].patience, Nanoseconds(60s));
}

TEST_F(UpdaterTest, OnlyTheBuildDecides) {
    auto told = release();
    for (const auto& [build, isNewer] : {std::pair(26, true), {27, false}, {28, false}}) {
        make(build);
        publish(told);
        check();
        EXPECT_EQ(std::holds_alternative<Available>(state()), isNewer) << build;
        EXPECT_EQ(std::holds_alternative<UpToDate>(state()), !isNewer) << build;
    }
    told.version = "9.9";
    make(27);
    publish(told);
    check();
    EXPECT_EQ(state(), Updater::State(UpToDate{}));
}

TEST_F(UpdaterTest, BuildZeroTakesAnyBuildAboveIt) {
    make(0);
    auto told = release();
    told.build = 1;
    publish(told);
    check();
    EXPECT_EQ(state(), Updater::State(Available{told}));
    told.build = 0;
    publish(told);
    check();
    EXPECT_EQ(state(), Updater::State(UpToDate{}));
}

TEST_F(UpdaterTest, AnEqualReleaseIsLoggedOnce) {
    make();
    publish(release());
    check();
    check(yes);
    EXPECT_EQ(log.messages.size(), 1U);
    auto again = release();
    again.version = "1.4.1";
    publish(again);
    check(yes);
    EXPECT_EQ(log.messages,
              (Lines{"Update beschikbaar: 1.4 (27)", "Update beschikbaar: 1.4.1 (27)"}));
    // After anything else it is news again.
    http.answers.erase(feedUrl);
    check(no);
    publish(again);
    check(no);
    EXPECT_EQ(linesOf("Update beschikbaar").size(), 3U);
}

TEST_F(UpdaterTest, AVersionThatHidesALineIsRefused) {
    make();
    auto told = release();
    told.version = "1.4\\n2026-11-21 12:00:00 Gelockt";
    publish(told);
    check();
    EXPECT_EQ(log.messages,
              Lines{R"(Updatecontrole mislukt: "version" ontbreekt in de feed of klopt niet)"});
}

TEST_F(UpdaterTest, AFailureThatSomebodyAskedForIsShown) {
    make();
    http.answers.emplace(feedUrl, Failure{"geen route"});
    check();
    EXPECT_EQ(state(), Updater::State(Failed{"Kan niet controleren op updates"}));
    EXPECT_EQ(log.messages, Lines{"Updatecontrole mislukt: geen route"});
}

TEST_F(UpdaterTest, ASilentFailureKeepsTheOfferAndForgetsAllElse) {
    make();
    publish(release());
    check();
    http.answers.erase(feedUrl);
    check(yes);
    EXPECT_EQ(state(), Updater::State(Available{release()}));
    EXPECT_EQ(linesOf("Updatecontrole"), Lines{noGoodAnswer});

    make(27);
    publish(release());
    check();
    ASSERT_EQ(state(), Updater::State(UpToDate{}));
    http.answers.erase(feedUrl);
    check(yes);
    EXPECT_EQ(state(), Updater::State(Idle{}));
    check(no);
    check(yes);
    EXPECT_EQ(state(), Updater::State(Idle{}));
}

TEST_F(UpdaterTest, OnlyStatus200IsAGoodAnswer) {
    make();
    for (const int status : {HttpResponse::refused, 199, 201, 204, 304, 404, 500}) {
        http.answers.clear();
        http.answers.emplace(feedUrl, HttpResponse{status, {}});
        check();
        EXPECT_EQ(state(), Updater::State(Failed{"Kan niet controleren op updates"})) << status;
        EXPECT_EQ(log.take(), Lines{noGoodAnswer}) << status;
    }
}

TEST_F(UpdaterTest, AFeedOverItsBoundIsNoGoodAnswer) {
    make();
    const auto filledTo = [this](std::size_t size) {
        publish(release());
        auto& body = http.answers.at(feedUrl)->body;
        body.resize(size, ' ');
    };
    filledTo(largestFeed);
    check();
    EXPECT_EQ(state(), Updater::State(Available{release()}));
    log.messages.clear();
    filledTo(largestFeed + 1);
    check();
    EXPECT_EQ(log.messages, Lines{noGoodAnswer});
}

TEST_F(UpdaterTest, AnUndecodableFeedSaysWhy) {
    make();
    http.serve(feedUrl, "<html>");
    check();
    EXPECT_EQ(log.take(), Lines{"Updatecontrole mislukt: de feed is geen JSON-object"});
    http.serve(feedUrl, R"({"version":"1.4","build":"27"})");
    check();
    EXPECT_EQ(log.take(),
              Lines{R"(Updatecontrole mislukt: "build" ontbreekt in de feed of klopt niet)"});
    EXPECT_EQ(state(), Updater::State(Failed{"Kan niet controleren op updates"}));
}

TEST_F(UpdaterTest, WithoutFeedOrKeyThereAreNoUpdates) {
    for (const auto& bundle :
         {BundleInfo{.feed = feedUrl}, BundleInfo{.key = signer.publicKey},
          BundleInfo{.feed = "geen adres", .key = signer.publicKey}, BundleInfo{}}) {
        updater.emplace(bundle, Updater::World{http, background, installer, installer}, time);
        EXPECT_FALSE(updater->isConfigured());
        updater->start();
        EXPECT_EQ(time.pending(), 0U);
        EXPECT_EQ(state(), Updater::State(Idle{}));
        bool over = false;
        updater->check(no, [&over] { over = true; });
        EXPECT_TRUE(over);
        EXPECT_EQ(state(), Updater::State(Failed{"Updates zijn niet ingesteld in deze versie"}));
        updater->install();
        EXPECT_EQ(time.pending(), 0U);
    }
    EXPECT_EQ(log.messages, Lines{});
    EXPECT_TRUE(http.requests.empty());
}

TEST_F(UpdaterTest, ChecksAfterTenSecondsAndEverySixHoursSilently) {
    make();
    updater->start();
    time.advance(10s - 1ns);
    EXPECT_TRUE(http.requests.empty());
    time.advance(1ns);
    EXPECT_EQ(http.requests.size(), 1U);
    time.advance(2s);
    EXPECT_EQ(state(), Updater::State(Idle{}));
    time.advance(6h - 12s - 1ns);
    EXPECT_EQ(http.requests.size(), 1U);
    time.advance(1ns);
    EXPECT_EQ(http.requests.size(), 2U);
    time.advance(12h);
    EXPECT_EQ(http.requests.size(), 4U);
}

TEST_F(UpdaterTest, NothingIsCheckedTwiceAtATime) {
    make();
    publish(release());
    updater->check(no);
    int over = 0;
    updater->check(yes, [&over] { ++over; });
    EXPECT_EQ(over, 1);
    time.advance(2s);
    EXPECT_EQ(http.requests.size(), 1U);
    // While the image is fetched, verified and put in place.
    updater->install();
    for (int second = 0; second < 5; ++second) {
        EXPECT_EQ(std::holds_alternative<Downloading>(state()), second < 3) << second;
        EXPECT_EQ(std::holds_alternative<Installing>(state()), second >= 3) << second;
        updater->check(second % 2 == 0 ? no : yes);
        updater->install();
        time.advance(1s);
    }
    EXPECT_EQ(std::ranges::count(installer.calls, "terminate"), 1);
    EXPECT_EQ(http.requests.size(), 2U);
}

TEST_F(UpdaterTest, AnInstallationGoesThroughItsStepsInOrder) {
    make();
    publish(release());
    Lines states;
    const auto told = updater->state().onChange([&](const Updater::State& state) {
        states.push_back(std::to_string(state.index()) + " after " +
                         std::to_string(installer.calls.size()));
    });
    check();
    updater->install();
    time.advance(10s);
    EXPECT_EQ(states, (Lines{"1 after 0", "3 after 0", "4 after 0", "5 after 0"}));
    EXPECT_EQ(installer.calls,
              (Lines{"unpack the bytes of an image", "examine /tmp/new/Wegslot.app 27",
                     "swap /tmp/new/Wegslot.app", "terminate"}));
    EXPECT_EQ(log.messages, (Lines{"Update beschikbaar: 1.4 (27)", "Update 1.4 wordt gedownload",
                                   "Update naar 1.4 (27) wordt geïnstalleerd"}));
    EXPECT_EQ(http.requests[1].url, imageUrl);
    EXPECT_EQ(http.requests[1].most, 536'870'912U);
    EXPECT_EQ(http.requests[1].patience, 30min);
}

TEST_F(UpdaterTest, AnImageMayLieAnywhere) {
    auto told = release();
    told.url = "https://elsewhere.example/1.4/image.tar.gz";
    http.serve(told.url, image);
    EXPECT_EQ(install(told), "");
    EXPECT_EQ(http.requests[1].url, told.url);
    EXPECT_EQ(installer.calls.back(), "terminate");
}

TEST_F(UpdaterTest, AHashInCapitalsMatches) {
    auto told = release();
    std::ranges::transform(told.sha256, told.sha256.begin(), [](char digit) {
        return digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit;
    });
    ASSERT_NE(told, release());
    EXPECT_EQ(install(told), "");
    EXPECT_EQ(installer.calls.back(), "terminate");
}

TEST_F(UpdaterTest, AFeedByHttpsLeadsToNoImageByHttpNotEvenOfThisMachine) {
    auto told = release();
    for (const auto* const url : {"http://127.0.0.1/image", "http://updates.example/image"}) {
        told.url = url;
        http.requests.clear();
        EXPECT_EQ(install(told), "Ongeldige downloadlink");
        EXPECT_EQ(http.requests.size(), 1U); // that of the feed
    }
}

TEST_F(UpdaterTest, WithoutAnAddressThereIsNoDownload) {
    auto told = release();
    told.url = "";
    EXPECT_EQ(install(told), "Ongeldige downloadlink");
    EXPECT_EQ(http.requests.size(), 1U);
    EXPECT_EQ(log.messages.back(), "Update mislukt: Ongeldige downloadlink");
}

TEST_F(UpdaterTest, ADownloadThatFailsSaysSo) {
    http.answers.erase(imageUrl);
    EXPECT_EQ(install(release()), "Download mislukt");
    http.answers.emplace(imageUrl, HttpResponse{HttpResponse::refused, {}});
    EXPECT_EQ(install(release()), "Download mislukt");
    http.answers.erase(imageUrl);
    http.answers.emplace(imageUrl, Failure{"geen route"});
    EXPECT_EQ(install(release()), "geen route");
    EXPECT_EQ(log.messages.back(), "Update mislukt: geen route");
    EXPECT_EQ(installer.calls, Lines{});
}

TEST_F(UpdaterTest, AnotherHashIsADamagedDownloadWhoeverSignedIt) {
    auto told = release();
    told.sha256.back() = told.sha256.back() == '0' ? '1' : '0';
    told.signature = "";
    EXPECT_EQ(install(told), "Download is beschadigd");
    told = release();
    told.sha256.pop_back();
    EXPECT_EQ(install(told), "Download is beschadigd");
    told.sha256 = release().sha256 + "0";
    EXPECT_EQ(install(told), "Download is beschadigd");
    EXPECT_EQ(installer.calls, Lines{});
}

TEST_F(UpdaterTest, OnlyTheOwnersSignatureOverTheImageCounts) {
    const std::vector<std::uint8_t> bytes(image.begin(), image.end());
    const std::string hash = release().sha256;
    for (const std::string& signature :
         {Signer().sign(bytes), signer.sign(std::vector<std::uint8_t>(hash.begin(), hash.end())),
          std::string(), std::string("geen base64")}) {
        auto told = release();
        told.signature = signature;
        EXPECT_EQ(install(told), "Handtekening van de update klopt niet") << signature;
        EXPECT_EQ(log.messages.back(), "Update mislukt: Handtekening van de update klopt niet");
    }
    EXPECT_EQ(installer.calls, Lines{});
}

TEST_F(UpdaterTest, AnImageThatCannotBeUnpackedIsNotInstalled) {
    installer.unpacking = Failure{"tar mislukt (2)"};
    EXPECT_EQ(install(release()), "tar mislukt (2)");
    EXPECT_EQ(installer.calls, Lines{"unpack the bytes of an image"});
}

TEST_F(UpdaterTest, AnUnexpectedAppIsThrownAway) {
    installer.examining = Failure{unexpectedApp()};
    EXPECT_EQ(install(release()), "De update bevat een onverwachte app");
    EXPECT_EQ(installer.calls,
              (Lines{"unpack the bytes of an image", "examine /tmp/new/Wegslot.app 27",
                     "discard /tmp/new/Wegslot.app"}));
}

TEST_F(UpdaterTest, WhereTheAppCannotBeReplacedTheNewOneIsShownAndKept) {
    installer.replaceable = false;
    EXPECT_EQ(install(release()),
              "Geen rechten om de app te vervangen. Sleep de nieuwe versie zelf naar Apps.");
    EXPECT_EQ(installer.calls,
              (Lines{"unpack the bytes of an image", "examine /tmp/new/Wegslot.app 27",
                     "reveal /tmp/new/Wegslot.app"}));
}

TEST_F(UpdaterTest, ASwapThatCannotBeginLeavesNothing) {
    installer.launching = Failure{"schijf vol"};
    EXPECT_EQ(install(release()), "schijf vol");
    EXPECT_EQ(installer.calls.back(), "discard /tmp/new/Wegslot.app");
    EXPECT_EQ(log.messages.back(), "Update mislukt: schijf vol");
}

TEST_F(UpdaterTest, InstallsNothingThatIsNotOffered) {
    make(27);
    updater->install();
    publish(release());
    updater->check(no);
    updater->install();
    EXPECT_EQ(state(), Updater::State(Checking{}));
    time.advance(2s);
    updater->install();
    EXPECT_EQ(state(), Updater::State(UpToDate{}));
    time.advance(10s);
    EXPECT_EQ(http.requests.size(), 1U);
    EXPECT_EQ(log.messages, Lines{});
}

TEST_F(UpdaterTest, AfterAFailedInstallationOneMayCheckAgain) {
    http.answers.erase(imageUrl);
    EXPECT_EQ(install(release()), "Download mislukt");
    http.serve(imageUrl, image);
    updater->install();
    EXPECT_EQ(state(), Updater::State(InstallFailed{"Download mislukt"}));
    check();
    EXPECT_EQ(state(), Updater::State(Available{release()}));
    updater->install();
    time.advance(10s);
    EXPECT_EQ(installer.calls.back(), "terminate");
}

TEST_F(UpdaterTest, NothingHappensAfterItsEnd) {
    make();
    publish(release());
    updater->start();
    check();
    updater->install();
    updater.reset();
    time.advance(24h);
    EXPECT_EQ(http.requests.size(), 2U);
    EXPECT_EQ(installer.calls, Lines{});
}
