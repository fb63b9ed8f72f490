// Keeps the application current from a signed feed: looks for a newer release, and installs it on
// request. This is the conductor: it decides which step comes when, and what the panel and the log
// are told. It knows neither network nor disk.
#pragma once

#include "base/background.h"
#include "base/observable.h"
#include "base/scheduler.h"
#include "update/app_control.h"
#include "update/bundle_info.h"
#include "update/http_client.h"
#include "update/installer.h"
#include "update/release.h"

#include <functional>
#include <memory>
#include <string>
#include <variant>

namespace wegslot {

namespace update_state {

/// Nothing is known: nobody has looked, or looking failed and nobody had asked.
struct Idle {
    friend bool operator==(const Idle&, const Idle&) = default;
};

struct Checking {
    friend bool operator==(const Checking&, const Checking&) = default;
};

struct UpToDate {
    friend bool operator==(const UpToDate&, const UpToDate&) = default;
};

struct Available {
    Release release;
    friend bool operator==(const Available&, const Available&) = default;
};

/// The image is fetched and verified.
struct Downloading {
    Release release;
    friend bool operator==(const Downloading&, const Downloading&) = default;
};

/// The swap is prepared.
struct Installing {
    Release release;
    friend bool operator==(const Installing&, const Installing&) = default;
};

/// The last check failed.
struct Failed {
    Message message; ///< for the user
    friend bool operator==(const Failed&, const Failed&) = default;
};

/// The last installation failed.
struct InstallFailed {
    Message message; ///< for the user
    friend bool operator==(const InstallFailed&, const InstallFailed&) = default;
};

} // namespace update_state

class Updater {
public:
    using State =
        std::variant<update_state::Idle, update_state::Checking, update_state::UpToDate,
                     update_state::Available, update_state::Downloading, update_state::Installing,
                     update_state::Failed, update_state::InstallFailed>;

    /// Everything must outlive the updater.
    struct World {
        HttpClient& http;
        Background& background;
        Installer& installer;
        AppControl& app;
    };

    /// Who asked for a check: a silent one hides that it failed.
    enum class Silent { no, yes };

    /// An image may be no larger, in bytes.
    static constexpr std::size_t largestImage = std::size_t{512} << 20U;

    Updater(BundleInfo bundle, World world, Scheduler& scheduler);

    Updater(const Updater&) = delete;
    Updater& operator=(const Updater&) = delete;

    [[nodiscard]] const Observable<State>& state() const { return state_; }

    [[nodiscard]] const std::string& currentVersion() const { return bundle_.version; }

    [[nodiscard]] std::int64_t currentBuild() const { return bundle_.build; }

    /// Whether this build knows where releases are and who signs them.
    [[nodiscard]] bool isConfigured() const { return feed_ && bundle_.key; }

    /// Checks 10 s from now and every 6 hours, silently. For builds that are not configured there
    /// is nothing to start.
    void start();

    /// Fetches the feed and compares builds, unless that or an installation is under way. `done`
    /// is called when the check is over, at once where there is none.
    void check(Silent silent, std::function<void()> done = {});

    /// Downloads, verifies and unpacks the release that is offered, hands it to the swap and ends
    /// the application; does nothing in any other state.
    void install();

private:
    /// What is kept of an installation while work on it goes on elsewhere.
    struct Attempt;

    void settle(const Result<Release>& found, Silent silent, const State& before);
    void download(const Release& release);
    void verify(const Release& release, std::vector<std::uint8_t> image);
    void unpack(const std::shared_ptr<Attempt>& attempt);
    void swap(const Attempt& attempt);
    void failInstall(const Message& message);

    BundleInfo bundle_;
    World world_;
    Scheduler& scheduler_;
    std::optional<std::string> feed_;
    Observable<State> state_;
    Timer firstCheck_;
    Timer laterChecks_;
    /// The one request or piece of work that is under way.
    Handle pending_;
};

} // namespace wegslot
