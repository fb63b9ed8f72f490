// The root of the application: makes the long-lived objects in their order and keeps them until
// the end. Knows no world; main hands it the ports.
#pragma once

#include "model/settings.h"
#include "monitor/monitor.h"
#include "scanner/scanner.h"

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
    };

    explicit AppModel(Surroundings surroundings);

    AppModel(const AppModel&) = delete;
    AppModel& operator=(const AppModel&) = delete;

    [[nodiscard]] Settings& settings() { return settings_; }

    [[nodiscard]] Scanner& scanner() { return scanner_; }

    /// Made on the first read, so that settings and scanner are there before it listens to
    /// them; the same object from then on.
    [[nodiscard]] Monitor& monitor();

private:
    Surroundings surroundings_;
    Settings settings_;
    Scanner scanner_;
    std::optional<Monitor> monitor_;
};

} // namespace wegslot
