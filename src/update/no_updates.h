// The ports for when nothing is ever updated (a replay, a demo, most tests, a build without
// updates): every request fails, and nothing happens.
#pragma once

#include "update/updater.h"

namespace wegslot {

class NoUpdates final : public HttpClient, public Background, public Installer, public AppControl {
public:
    [[nodiscard]] Updater::World world() { return {*this, *this, *this, *this}; }

    [[nodiscard]] std::optional<std::string> resolve(std::string_view,
                                                     std::string_view) const override {
        return std::nullopt; // so no updater is configured, and the rest is never asked
    }

    [[nodiscard]] Handle get(HttpRequest, HttpClient::Done) override { return {}; }

    [[nodiscard]] Handle run(std::function<void()>, std::function<void()>) override { return {}; }

    [[nodiscard]] Result<std::string> unpack(std::span<const std::uint8_t>) override {
        return Failure{};
    }

    [[nodiscard]] Result<Ready> examine(const std::string&, const Release&) override {
        return Failure{};
    }

    [[nodiscard]] bool mayReplace() const override { return false; }

    [[nodiscard]] Result<Ready> launchSwap(const std::string&) override { return Failure{}; }

    void discard(const std::string&) override {}

    void terminate() override {}

    void reveal(const std::string&) override {}
};

} // namespace wegslot
