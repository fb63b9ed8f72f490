// What is kept of a minute, as bytes from a file that anything may have happened to. What they
// mean, if they mean something, comes back when it is packed again.

#include "history/packed.h"
#include "tests/fuzz/expect.h"

#include <cstdint>
#include <string>

using namespace wegslot;
using namespace wegslot::history;

namespace {

constexpr TimePoint start{std::chrono::minutes{29'000'000}};

void expectKey(std::string_view bytes) {
    const auto key = unpackedKey(bytes, start);
    if (!key) return;
    const auto again = unpackedKey(packed(*key, start), start);
    expect(static_cast<bool>(again));
    expect(again->samples == key->samples && again->states == key->states);
}

void expectJudged(std::string_view bytes) {
    const auto judged = unpackedJudged(bytes, start);
    if (!judged) return;
    expect(*unpackedJudged(packed(*judged, start), start) == *judged);
}

void expectEvents(std::string_view bytes) {
    const auto events = unpackedEvents(bytes, start);
    if (!events) return;
    // A trace has several ways to say a thing; what is written has one.
    const std::string once = packed(*events, start);
    const auto again = unpackedEvents(once, start);
    expect(static_cast<bool>(again));
    expect(again->size() == events->size() && packed(*again, start) == once);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(data, data + size);
    expectKey(bytes);
    expectJudged(bytes);
    expectEvents(bytes);
    return 0;
}
