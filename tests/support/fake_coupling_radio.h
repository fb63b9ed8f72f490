// A radio to couple with that does as a test says, and remembers what it was asked.
#pragma once

#include "coupling/coupling_radio.h"

#include <string>
#include <utility>
#include <vector>

namespace wegslot {

class FakeCouplingRadio final : public coupling::CouplingRadio {
public:
    std::vector<std::string> calls;
    coupling::CouplingListener* listener = nullptr;
    std::string name; ///< under which it appears

    [[nodiscard]] std::vector<std::string> takeCalls() { return std::exchange(calls, {}); }

    void setListener(coupling::CouplingListener* told) override { listener = told; }
    void appear(const std::string& as, coupling::Confirmation confirmation) override {
        name = as;
        calls.emplace_back(confirmation == coupling::Confirmation::code ? "appear"
                                                                        : "appear without code");
    }
    void askForBond() override { calls.emplace_back("ask"); }
    void answer(bool same) override { calls.emplace_back(same ? "same" : "not the same"); }
    void forget() override { calls.emplace_back("forget"); }
    void disappear() override { calls.emplace_back("disappear"); }
};

} // namespace wegslot
