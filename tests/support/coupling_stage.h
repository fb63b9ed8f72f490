// A coupling in a world of its own, up to each of its steps.
#pragma once

#include "coupling/coupling.h"
#include "tests/support/fake_coupling_radio.h"
#include "tests/support/world.h"

namespace wegslot::coupling {

/// The fixture; tests of one subject derive from it.
struct CouplingStage : testing::Test {
    using Calls = std::vector<std::string>;

    const Visitor stranger{};
    const Visitor phone{.name = "Telefoon", .identity = numbered(7)};

    CouplingStage() {
        world.run();
        make();
    }

    void make(decltype(Coupling::World::paste) paste = {}) {
        coupling.emplace(Coupling::World{.radio = radio,
                                         .scanner = world.scanner(),
                                         .settings = world.settings(),
                                         .clock = world.time,
                                         .scheduler = world.time,
                                         .suffix = [] { return 0x4F2A; },
                                         .paste = std::move(paste)});
    }

    World world;
    FakeCouplingRadio radio;
    std::optional<Coupling> coupling;

    [[nodiscard]] CouplingListener& tell() { return *radio.listener; }

    template <typename Case>
    [[nodiscard]] const Case* now() const {
        return std::get_if<Case>(&coupling->step().get());
    }

    [[nodiscard]] const std::vector<KeyDevice>& keys() { return world.settings().keys.get(); }

    void appear(Action kind = Action::iphone) {
        coupling->act(kind);
        tell().appears();
    }

    void meet(Action kind = Action::iphone) {
        appear(kind);
        tell().visitorCame(stranger);
    }

    void compare() {
        meet();
        tell().codeCame(1);
    }

    /// Up to the question whose it is.
    void bond() {
        meet();
        tell().bonded(phone);
    }

    /// Up to where it is listened to, at the table.
    void own() {
        bond();
        coupling->act(Action::yes);
        tell().isGone();
        radio.calls.clear();
    }

    /// Up to where it is listened to, where it is carried.
    void pocket() {
        own();
        world.keepHearing(7, -50, 20);
        coupling->act(Action::proceed);
    }

    /// The end of a walk through all of it.
    void finishListening(int every) {
        for (int second = 0; second < 120; ++second) {
            if (second % every == 0) world.hear(7, -70);
            world.pass(std::chrono::seconds{1});
        }
    }

    /// What came of it once all is back.
    [[nodiscard]] std::optional<Ending> ending() {
        if (!now<step::PuttingBack>()) return std::nullopt;
        tell().isGone();
        const auto* const failed = now<step::Failed>();
        return failed == nullptr ? std::nullopt : std::optional(failed->ending);
    }
};

} // namespace wegslot::coupling
