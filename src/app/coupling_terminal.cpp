#include "app/coupling_terminal.h"

#include "coupling/page_text.h"

#include <utility>
#include <variant>

namespace wegslot {

CouplingTerminal::CouplingTerminal(coupling::Coupling& coupling, const Clock& clock,
                                   PrintLine print, std::function<void(bool isKey)> done)
    : coupling_(coupling),
      clock_(clock),
      print_(std::move(print)),
      done_(std::move(done)),
      steps_(coupling.step().follow([this](const coupling::Step& step) { show(step); })) {}

void CouplingTerminal::show(const coupling::Step& step) {
    if (const auto* const judged = std::get_if<coupling::step::Judged>(&step))
        isKey_ = judged->threshold.has_value();
    if (std::holds_alternative<coupling::step::Closed>(step)) return done_(isKey_);
    page_ = coupling_.page(step);
    for (const std::string& line : linesOf(page_, clock_.now()))
        print_(line);
}

void CouplingTerminal::typed(std::string_view line) {
    if (const auto action = chosenBy(page_, line)) return coupling_.act(*action);
    show(coupling_.step().get());
}

} // namespace wegslot
