// Couples a phone in a terminal: shows each step as it comes, and does what is typed.
#pragma once

#include "app/key_commands.h"
#include "coupling/coupling.h"

#include <functional>
#include <string_view>

namespace wegslot {

class CouplingTerminal {
public:
    /// `done` is told once, from within a step, whether there is a key. All must outlive this.
    CouplingTerminal(coupling::Coupling& coupling, const Clock& clock, PrintLine print,
                     std::function<void(bool isKey)> done);

    /// A line that somebody typed; what is none of the choices shows them again.
    void typed(std::string_view line);

private:
    void show(const coupling::Step& step);

    coupling::Coupling& coupling_;
    const Clock& clock_;
    PrintLine print_;
    std::function<void(bool isKey)> done_;
    coupling::Page page_;
    bool isKey_ = false;
    Subscription steps_;
};

} // namespace wegslot
