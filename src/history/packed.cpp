#include "history/packed.h"

#include "history/happening_text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <utility>

namespace wegslot::history {
namespace {

using Milliseconds = std::chrono::milliseconds;
using Numbers = std::vector<std::uint64_t>;

/// The last whole millisecond that a TimePoint can express.
constexpr std::int64_t lastMillisecond =
    std::chrono::floor<Milliseconds>(TimePoint::max().time_since_epoch()).count();

/// What stands for a state, by its place.
constexpr std::array<std::optional<KeyState>, 4> stateCodes{std::nullopt, KeyState::near,
                                                            KeyState::leaving, KeyState::away};

// --- Numbers: seven bits a byte, the lowest first; a number with a sign takes turns with its own
// negative, so that small ones of both kinds are short.

void put(std::string& bytes, std::uint64_t number) {
    for (; number > 0x7FU; number >>= 7U)
        bytes += static_cast<char>(0x80U | (number & 0x7FU));
    bytes += static_cast<char>(number);
}

std::uint64_t unsignedOf(std::int64_t number) {
    const auto doubled = static_cast<std::uint64_t>(number) << 1U;
    return number < 0 ? ~doubled : doubled;
}

std::int64_t signedOf(std::uint64_t number) {
    const auto half = static_cast<std::int64_t>(number >> 1U);
    return (number & 1U) != 0 ? -half - 1 : half;
}

/// Takes numbers from bytes; once something is wrong everything is.
class Taking {
public:
    explicit Taking(std::string_view bytes) : left_(bytes) {}

    std::uint64_t number() {
        std::uint64_t value = 0;
        for (unsigned shift = 0; shift < 64; shift += 7) {
            if (left_.empty()) return fail();
            const auto byte = static_cast<std::uint8_t>(left_.front());
            const std::uint64_t bits = byte & 0x7FU;
            left_.remove_prefix(1);
            if (bits << shift >> shift != bits) return fail();
            value |= bits << shift;
            if (byte < 0x80U) return value;
        }
        return fail();
    }

    std::string_view text(std::uint64_t size) {
        if (size > left_.size()) fail();
        const std::string_view taken = left_.substr(0, isWrong_ ? 0 : size);
        left_.remove_prefix(taken.size());
        return taken;
    }

    std::uint64_t fail() {
        isWrong_ = true;
        left_ = {};
        return 0;
    }

    [[nodiscard]] std::size_t size() const { return left_.size(); }
    [[nodiscard]] bool isAtEnd() const { return left_.empty(); }
    [[nodiscard]] bool isWrong() const { return isWrong_; }

private:
    std::string_view left_;
    bool isWrong_ = false;
};

// --- Instants: each as its difference with the one before, the first with the minute's start -----

class Differences {
public:
    explicit Differences(TimePoint start) : last_(millisecondOf(start)) {}

    std::uint64_t to(TimePoint at) {
        const std::int64_t next = millisecondOf(at);
        return unsignedOf(next - std::exchange(last_, next));
    }

    TimePoint from(std::uint64_t difference, Taking& taking) {
        const std::int64_t step = signedOf(difference);
        constexpr std::int64_t longest = 2 * lastMillisecond;
        if (step < -longest || step > longest || last_ + step < -lastMillisecond ||
            last_ + step > lastMillisecond)
            taking.fail();
        if (!taking.isWrong()) last_ += step;
        return TimePoint{Milliseconds{last_}};
    }

private:
    static std::int64_t millisecondOf(TimePoint at) {
        const auto whole = std::chrono::floor<Milliseconds>(at.time_since_epoch()).count();
        return std::max<std::int64_t>(whole, -lastMillisecond);
    }

    std::int64_t last_;
};

// --- Runs: a number, and how often it comes in a row. They end with the bytes --------------------

void putRuns(std::string& bytes, const Numbers& numbers) {
    const auto end =
        numbers.begin() + static_cast<std::ptrdiff_t>(std::min(numbers.size(), mostJudgements));
    for (auto run = numbers.begin(); run != end;) {
        const auto next = std::find_if(run, end, [&run](auto number) { return number != *run; });
        put(bytes, *run);
        put(bytes, static_cast<std::uint64_t>(next - run));
        run = next;
    }
}

Numbers takenRuns(Taking& taking) {
    Numbers numbers;
    while (!taking.isAtEnd()) {
        const std::uint64_t number = taking.number();
        const std::uint64_t count = taking.number();
        if (count > mostJudgements - numbers.size()) taking.fail();
        if (!taking.isWrong()) numbers.insert(numbers.end(), count, number);
    }
    return numbers;
}

template <typename T>
Result<T> understood(const Taking& taking, T value) {
    if (taking.isWrong()) return Failure{message("beschadigd")};
    return value;
}

} // namespace

std::string packed(const KeyMinute& key, TimePoint start) {
    using Level = std::numeric_limits<std::int8_t>;
    std::string bytes;
    put(bytes, key.samples.size());
    Differences differences(start);
    for (const Sample& sample : key.samples) {
        put(bytes, differences.to(sample.at));
        bytes += static_cast<char>(std::clamp<int>(sample.rssi, Level::min(), Level::max()));
    }
    Numbers codes;
    for (const auto& state : key.states)
        codes.push_back(
            static_cast<std::uint64_t>(std::ranges::find(stateCodes, state) - stateCodes.begin()));
    putRuns(bytes, codes);
    return bytes;
}

Result<KeyMinute> unpackedKey(std::string_view bytes, TimePoint start) {
    KeyMinute key;
    Taking taking(bytes);
    const std::uint64_t samples = taking.number();
    if (samples > taking.size() / 2) taking.fail(); // each takes two bytes at least
    Differences differences(start);
    for (std::uint64_t i = 0; i < samples && !taking.isWrong(); ++i) {
        const TimePoint at = differences.from(taking.number(), taking);
        const std::string_view level = taking.text(1);
        if (!taking.isWrong()) key.samples.push_back({at, static_cast<std::int8_t>(level.front())});
    }
    for (const std::uint64_t code : takenRuns(taking)) {
        if (code >= stateCodes.size()) taking.fail();
        if (!taking.isWrong()) key.states.push_back(stateCodes.at(code));
    }
    return understood(taking, std::move(key));
}

std::string packed(const std::vector<TimePoint>& judged, TimePoint start) {
    std::string bytes;
    Numbers steps;
    Differences differences(start);
    for (const TimePoint at : judged)
        steps.push_back(differences.to(at));
    putRuns(bytes, steps);
    return bytes;
}

Result<std::vector<TimePoint>> unpackedJudged(std::string_view bytes, TimePoint start) {
    std::vector<TimePoint> judged;
    Taking taking(bytes);
    Differences differences(start);
    for (const std::uint64_t step : takenRuns(taking))
        judged.push_back(differences.from(step, taking));
    return understood(taking, std::move(judged));
}

std::string packed(const std::vector<Event>& events, TimePoint start) {
    std::string bytes;
    Differences differences(start);
    for (const Event& event : events) {
        put(bytes, differences.to(event.at));
        const std::string text = written(event.what);
        put(bytes, text.size());
        bytes += text;
    }
    return bytes;
}

Result<std::vector<Event>> unpackedEvents(std::string_view bytes, TimePoint start) {
    std::vector<Event> events;
    Taking taking(bytes);
    Differences differences(start);
    while (!taking.isAtEnd()) {
        const TimePoint at = differences.from(taking.number(), taking);
        auto happening = readHappening(taking.text(taking.number()));
        if (!happening) return happening.failure();
        events.push_back({at, *std::move(happening)});
    }
    return understood(taking, std::move(events));
}

} // namespace wegslot::history
