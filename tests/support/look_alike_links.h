// The kernel's view of low-energy links that a test plays: which stand and how strong they are.
#pragma once

#include "base/scheduler.h"
#include "scanner/bluez/links.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>

namespace wegslot {

class LookAlikeLinks final : public bluez::Links {
public:
    explicit LookAlikeLinks(Scheduler& scheduler) : scheduler_(scheduler) {}

    [[nodiscard]] bool canRead(const std::string&) override { return permitted; }

    [[nodiscard]] std::optional<bool> isLinked(const std::string&,
                                               const std::string& address) override {
        return permitted ? std::optional(strengths.contains(address)) : std::nullopt;
    }

    [[nodiscard]] std::optional<bluez::StandingLinks>
    standing(const std::string&, const std::string& address) override {
        if (!permitted) return std::nullopt;
        return bluez::StandingLinks{.lowEnergy = strengths.contains(address),
                                    .calledUs = callers.contains(address),
                                    .classic = classic.contains(address)};
    }

    [[nodiscard]] Subscription read(const std::string&, const std::string& address,
                                    Answer answer) override {
        const auto found = strengths.find(address);
        const auto strength = found == strengths.end() ? std::nullopt : found->second;
        auto timer = std::make_shared<Timer>(scheduler_.after(
            Nanoseconds{0}, [answer = std::move(answer), strength] { answer(strength); }));
        return Subscription{[timer] { timer->reset(); }};
    }

    [[nodiscard]] std::optional<std::uint8_t> lossCode(const std::string&,
                                                       const std::string& address) override {
        const auto code = lossCodes.extract(address);
        return code.empty() ? std::nullopt : std::optional(code.mapped());
    }

    bool permitted = true;
    std::map<std::string, std::optional<int>> strengths; ///< of the links that stand, by address
    std::map<std::string, std::uint8_t> lossCodes;
    std::set<std::string> callers; ///< who opened their low-energy link themselves
    std::set<std::string> classic; ///< who has a link of the other kind

private:
    Scheduler& scheduler_;
};

} // namespace wegslot
