// What holds for every event that a trace can tell of, whatever is added: who wants to write or
// read one finds it in the page about traces.

#include "trace/event.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>
#include <utility>

using namespace wegslot;

namespace {

using Words = std::set<std::string>;

/// The words in backquotes in the first column of the page's table of events.
Words wordsOfThePage() {
    std::ifstream page(WEGSLOT_TRACES_PAGE);
    Words words;
    bool isInTable = false;
    for (std::string line; std::getline(page, line);) {
        if (line.starts_with("| event |")) isInTable = true;
        if (line.empty()) isInTable = false;
        if (!isInTable || !line.starts_with("| `")) continue;
        const std::string column = line.substr(0, line.find(" | "));
        for (auto open = column.find('`'); open != std::string::npos;) {
            const auto close = column.find('`', open + 1);
            words.insert(column.substr(open + 1, close - open - 1));
            open = column.find('`', close + 1);
        }
    }
    return words;
}

template <std::size_t... indices>
Words wordsOfEvents(std::index_sequence<indices...> /*all*/) {
    return {std::string(std::variant_alternative_t<indices, trace::Event>::word)...};
}

} // namespace

TEST(TracesPage, ListsEveryEventAndNoOther) {
    Words words = wordsOfEvents(std::make_index_sequence<std::variant_size_v<trace::Event>>());
    words.erase("start"); // told of above the table
    EXPECT_EQ(wordsOfThePage(), words);
}
