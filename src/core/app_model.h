// The root of the application: makes the long-lived objects in their order and keeps them until
// the end. Knows no world; main hands it the ports.
#pragma once

#include "model/settings.h"
#include "monitor/monitor.h"
#include "scanner/scanner.h"
#include "update/no_updates.h"
#include "update/updater.h"

#include <functional>
#include <memory>
#include <optional>

namespace wegslot {

class AppModel {
public:
    /// What the objects are made over; everything must outlive the model.
    struct Surroundings {
        PreferencesStore& preferences;
        BluetoothCentral& central;
        Monitor::Platform platform;
        std::function<std::unique_ptr<WarningHUD>()> makeHud;
        /// What this application says of itself, and where its updates come from.
        BundleInfo bundle{};
        /// None where nothing is ever updated.
        std::optional<Updater::World> updates{};
        /// Look for a release at once, and install it.
        bool updateNow = false;
        Connecting connecting = Connecting::allowed;
    };

    explicit AppModel(Surroundings surroundings);

    AppModel(const AppModel&) = delete;
    AppModel& operator=(const AppModel&) = delete;

    [[nodiscard]] Settings& settings() { return settings_; }

    [[nodiscard]] Scanner& scanner() { return scanner_; }

    [[nodiscard]] BluetoothCentral& radio() { return surroundings_.central; }

    /// The radio tells `link` from here on, which passes each report on to the scanner: before or
    /// after it has done its own with it. Null for the scanner alone. May be called from within a
    /// report.
    void setLinkBeforeScanner(CentralDelegate* link);

    /// Made on the first read, so that settings and scanner are there before it listens to
    /// them; the same object from then on.
    [[nodiscard]] Monitor& monitor();

    [[nodiscard]] Updater& updater() { return updater_; }

    /// Looks for a release, and installs it when there is one.
    void updateNow();

private:
    Surroundings surroundings_;
    Settings settings_;
    Scanner scanner_;
    std::optional<Monitor> monitor_;
    NoUpdates noUpdates_;
    Updater updater_;
    Timer updateNow_;
};

} // namespace wegslot
