// A whole trace, replayed. Whatever it holds, the replay ends, and ends the same way twice.

#include "replay/replay.h"
#include "tests/fuzz/expect.h"

#include <cstdint>
#include <sstream>
#include <string>

using namespace wegslot;

namespace {

// A trace may ask for a century of ticks: this many lines of input reach no further than a day.
constexpr auto tooLong = "\"t\":";

bool spansMoreThanADay(const std::string& text) {
    for (auto at = text.find(tooLong); at != std::string::npos; at = text.find(tooLong, at + 1)) {
        std::size_t digits = 0;
        for (auto i = at + 4; i < text.size() && text[i] != '.' && text[i] != ','; ++i)
            ++digits;
        if (digits > 5) return true;
    }
    return false;
}

std::string replayed(const std::string& text) {
    std::istringstream input(text);
    std::string output;
    Replay replay([&output](std::string_view line) { output += line; }, {});
    const auto result = replay.run(input);
    return output + (result ? "" : result.failure().message.builtIn());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    if (spansMoreThanADay(text)) return 0;
    expect(replayed(text) == replayed(text));
    return 0;
}
