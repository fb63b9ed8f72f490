// The core with what the panel needs besides: an updater that a test speaks for, a login item, and
// a note of what was asked of others.
#pragma once

#include "tests/support/world.h"
#include "ui/panel_model.h"

#include <optional>
#include <string>
#include <vector>

namespace wegslot {

struct FakeLoginItem final : LoginItem {
    bool enabled = false;
    std::optional<Failure> failure;

    [[nodiscard]] bool isEnabled() const override { return enabled; }

    [[nodiscard]] std::optional<Failure> setEnabled(bool value) override {
        if (!failure) enabled = value;
        return failure;
    }
};

struct PanelWorld {
    World world;
    Observable<Updater::State> update;
    Observable<Scheme> scheme{Scheme::light};
    FakeLoginItem loginItem;
    Remembered remembered{world.store};
    std::vector<std::string> asked; ///< what the panel asked others to do

    /// Runs the core with these keys.
    [[nodiscard]] PanelModel::Objects run(const std::vector<KeyDevice>& keys = {}) {
        AppModel& model = world.run(keys);
        const auto ask = [this](const char* what) {
            return [this, what] { asked.emplace_back(what); };
        };
        return {.settings = model.settings(),
                .scanner = model.scanner(),
                .monitor = model.monitor(),
                .updates = {update, "1.3", true, ask("check"), ask("install")},
                .loginItem = loginItem,
                .remembered = remembered,
                .requests = {ask("log"), ask("quit"), ask("couple")},
                .clock = world.time,
                .scheduler = world.time,
                .clockTime = [](TimePoint) { return "14:30"; },
                .scheme = scheme};
    }
};

} // namespace wegslot
