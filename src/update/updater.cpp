#include "update/updater.h"

#include "base/text.h"
#include "log/log.h"
#include "update/verify.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace wegslot {
namespace {

using namespace update_state;
using namespace std::chrono_literals;

constexpr Nanoseconds firstCheckAfter = 10s;
constexpr Nanoseconds checkInterval = 6h;
/// For the whole of a feed, which is a few hundred bytes.
constexpr Nanoseconds feedPatience = 60s;

/// For the whole of an image: 512 MiB at some 300 kB a second.
constexpr Nanoseconds imagePatience = 30min;

constexpr int statusOk = 200;

bool isBusy(const Updater::State& state) {
    return std::holds_alternative<Checking>(state) || std::holds_alternative<Downloading>(state) ||
           std::holds_alternative<Installing>(state);
}

bool isSameHash(std::string_view computed, std::string_view told) {
    const auto lowered = [](char digit) {
        return digit >= 'A' && digit <= 'F' ? static_cast<char>(digit - 'A' + 'a') : digit;
    };
    return std::ranges::equal(computed, told, {}, {}, lowered);
}

/// "1.4 (27)". The feed is not signed: what it says must stay on one line of the log.
std::string nameOf(const Release& release) {
    return printable(release.version) + " (" + std::to_string(release.build) + ")";
}

Result<Release> releaseIn(const Result<HttpResponse>& response) {
    if (!response) return response.failure();
    if (response->status != statusOk)
        return Failure{message("Updateserver gaf geen goed antwoord")};
    const auto& body = response->body;
    return readRelease({reinterpret_cast<const char*>(body.data()), body.size()});
}

} // namespace

struct Updater::Attempt {
    Release release;
    PublicKey key;
    std::vector<std::uint8_t> image;
    /// What the work came to, so far.
    std::optional<Message> objection;
    std::string app;

    /// The hash first: an image that was cut short is damaged, not forged.
    void verify() {
        if (!isSameHash(sha256(image), release.sha256))
            objection = message("Download is beschadigd");
        else if (!isSigned(image, release.signature, key))
            objection = message("Handtekening van de update klopt niet");
    }

    void unpack(Installer& installer) {
        const auto unpacked = installer.unpack(image);
        image = {};
        if (!unpacked) {
            objection = unpacked.failure().message;
            return;
        }
        app = *unpacked;
        const auto examined = installer.examine(app, release);
        if (examined) return;
        objection = examined.failure().message;
        installer.discard(app);
    }
};

Updater::Updater(BundleInfo bundle, World world, Scheduler& scheduler)
    : bundle_(std::move(bundle)),
      world_(world),
      scheduler_(scheduler),
      feed_(bundle_.feed.empty() ? std::nullopt : world_.http.resolve({}, bundle_.feed)) {}

void Updater::start() {
    if (!isConfigured()) return;
    firstCheck_ = scheduler_.after(firstCheckAfter, [this] { check(Silent::yes); });
    laterChecks_ = scheduler_.every(checkInterval, [this] { check(Silent::yes); });
}

void Updater::check(Silent silent, std::function<void()> done) {
    if (!done) done = [] {};
    if (isBusy(state_.get())) return done();
    if (!isConfigured()) {
        state_.set(Failed{message("Updates zijn niet ingesteld in deze versie")});
        return done();
    }
    const State before = state_.get();
    state_.set(Checking{});
    pending_ = world_.http.get(
        {.url = *feed_, .most = largestFeed, .patience = feedPatience},
        [this, silent, before, done = std::move(done)](const Result<HttpResponse>& response) {
            settle(releaseIn(response), silent, before);
            done();
        });
}

void Updater::settle(const Result<Release>& found, Silent silent, const State& before) {
    const auto* const offered = std::get_if<Available>(&before);
    if (!found) {
        Log::write("Updatecontrole mislukt: " + found.failure().message.builtIn());
        if (silent == Silent::no)
            return state_.set(Failed{message("Kan niet controleren op updates")});
        return state_.set(offered != nullptr ? before : Idle{});
    }
    if (bundle_.build >= found->build) return state_.set(UpToDate{});
    if (offered == nullptr || offered->release != *found)
        Log::write("Update beschikbaar: " + nameOf(*found));
    state_.set(Available{*found});
}

void Updater::install() {
    const auto* const offered = std::get_if<Available>(&state_.get());
    if (offered == nullptr || !isConfigured()) return;
    const Release release = offered->release;
    state_.set(Downloading{release});
    Log::write("Update " + printable(release.version) + " wordt gedownload");
    download(release);
}

void Updater::download(const Release& release) {
    const auto url = world_.http.resolve(*feed_, release.url);
    const bool leavesHttps = feed_->starts_with("https:") && url && !url->starts_with("https:");
    if (!url || leavesHttps) return failInstall(message("Ongeldige downloadlink"));
    pending_ = world_.http.get({.url = *url, .most = largestImage, .patience = imagePatience},
                               [this, release](Result<HttpResponse> response) {
                                   if (!response) return failInstall(response.failure().message);
                                   if (response->status != statusOk)
                                       return failInstall(message("Download mislukt"));
                                   verify(release, std::move(response->body));
                               });
}

void Updater::verify(const Release& release, std::vector<std::uint8_t> image) {
    const auto attempt = std::make_shared<Attempt>(
        Attempt{release, *bundle_.key, std::move(image), std::nullopt, {}});
    pending_ = world_.background.run([attempt] { attempt->verify(); },
                                     [this, attempt] {
                                         if (attempt->objection)
                                             return failInstall(*attempt->objection);
                                         state_.set(Installing{attempt->release});
                                         unpack(attempt);
                                     });
}

void Updater::unpack(const std::shared_ptr<Attempt>& attempt) {
    Installer& installer = world_.installer;
    pending_ = world_.background.run([attempt, &installer] { attempt->unpack(installer); },
                                     [this, attempt] {
                                         if (attempt->objection)
                                             return failInstall(*attempt->objection);
                                         swap(*attempt);
                                     });
}

void Updater::swap(const Attempt& attempt) {
    if (!world_.installer.mayReplace()) {
        // The new application stays, to be put in place by hand.
        world_.app.reveal(attempt.app);
        return failInstall(
            message("Geen rechten om de app te vervangen. Sleep de nieuwe versie zelf naar Apps."));
    }
    if (const auto launched = world_.installer.launchSwap(attempt.app); !launched) {
        world_.installer.discard(attempt.app);
        return failInstall(launched.failure().message);
    }
    Log::write("Update naar " + nameOf(attempt.release) + " wordt geïnstalleerd");
    world_.app.terminate();
}

void Updater::failInstall(const Message& message) {
    Log::write("Update mislukt: " + message.builtIn());
    state_.set(InstallFailed{message});
}

} // namespace wegslot
