// The panel without a window, in the hands of a test.
#pragma once

#include "tests/support/panel_world.h"
#include "ui/panel_model.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace wegslot {

struct PanelModelStage : testing::Test, PanelWorld {
    int changes = 0;
    std::optional<PanelModel> model;

    void open(const std::vector<KeyDevice>& keys = {},
              PanelModel::Expand expand = PanelModel::Expand::asNeeded) {
        model.emplace(run(keys), expand, [this] { ++changes; });
        model->appear();
    }

    /// Whether a change was told since the last call.
    bool changed() { return std::exchange(changes, 0) > 0; }

    [[nodiscard]] bool launchAtLogin() {
        return std::get<panel::Toggle>(model->content().settings.parts.at(7)).isOn;
    }

    void hearPhones() {
        world.hearApple(1, -60, 0x10, "Mijn iPhone");
        world.hearApple(2, -60, 0x10, "Mijn Watch");
        world.pass(std::chrono::seconds{1});
    }

    /// As the first key once more.
    void chooseAnew() {
        world.settings().keys.set({});
        hearPhones();
        model->choose(numbered(1));
        ASSERT_EQ(world.settings().keys.get().size(), 1U);
    }

    [[nodiscard]] Dbm threshold() { return world.settings().keys.get().at(0).threshold; }

    [[nodiscard]] panel::KeyRow row(std::size_t index = 0) {
        return std::get<panel::KeyRow>(model->content().keys.rows.at(index));
    }

    /// The names of the keys, those that can be taken back in brackets.
    [[nodiscard]] std::vector<std::string> keyNames() {
        std::vector<std::string> names;
        for (const panel::KeyPlace& place : model->content().keys.rows) {
            const auto* const removed = std::get_if<panel::RemovedRow>(&place);
            names.push_back(removed == nullptr ? std::get<panel::KeyRow>(place).name
                                               : "(" + removed->name + ")");
        }
        return names;
    }

    [[nodiscard]] std::vector<std::string> listed() {
        std::vector<std::string> names;
        for (const panel::NearbyPlace& place : model->content().nearby.named.places)
            names.push_back(place.row ? place.row->name : "-");
        return names;
    }
};

} // namespace wegslot
