#include "coupling/page_text.h"

#include "base/text.h"

#include <algorithm>
#include <chrono>

namespace wegslot::coupling {

std::vector<std::string> linesOf(const Page& page, TimePoint now) {
    std::vector<std::string> lines{"", page.title.translated()};
    const auto add = [&lines](const Message& text) {
        if (!text.isEmpty()) lines.push_back("  " + text.translated());
    };
    add(page.text);
    if (page.code) lines.push_back("  " + *page.code);
    add(page.detail);
    if (page.until) {
        const auto left = std::chrono::ceil<std::chrono::seconds>(*page.until - now).count();
        const auto seconds = static_cast<unsigned long>(std::max<long long>(left, 0));
        add(counted("Nog %1 seconde", "Nog %1 seconden", seconds, {std::to_string(seconds)}));
    }
    for (std::size_t i = 0; i < page.choices.size(); ++i) {
        const Choice& choice = page.choices[i];
        lines.push_back("  " + std::to_string(i + 1) + " " + choice.label.translated() +
                        (choice.isMain ? " " + translated("(of Enter)") : ""));
    }
    return lines;
}

std::optional<Action> chosenBy(const Page& page, std::string_view line) {
    const std::string_view typed = trimmed(line);
    for (std::size_t i = 0; i < page.choices.size(); ++i) {
        const bool isIt = typed.empty() ? page.choices[i].isMain : typed == std::to_string(i + 1);
        if (isIt) return page.choices[i].action;
    }
    return std::nullopt;
}

} // namespace wegslot::coupling
