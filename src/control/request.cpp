#include "control/request.h"

#include "control/control_status.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>

namespace wegslot::control {
namespace {

using Words = std::span<const std::string_view>;

/// What may stand behind a word, each of them once or not at all.
struct Option {
    std::string_view word;
    bool& isGiven;
};

template <std::size_t count>
std::optional<Failure> readOptions(std::string_view request, Words words,
                                   std::array<Option, count> options) {
    for (const std::string_view word : words) {
        const auto option = std::ranges::find(options, word, &Option::word);
        if (option == options.end())
            return Failure{message("%1: onbekend woord %2 (zie --help)",
                                   {std::string(request), std::string(word)})};
        option->isGiven = true;
    }
    return std::nullopt;
}

Result<Request> parseStatus(Words words) {
    request::Status status;
    if (const auto fault = readOptions(
            "status", words,
            std::array{Option{"--json", status.json}, Option{"--follow", status.follow}}))
        return *fault;
    return Request{status};
}

Result<Request> parseKeys(Words words) {
    request::Keys keys;
    if (const auto fault = readOptions("keys", words, std::array{Option{"--json", keys.json}}))
        return *fault;
    return Request{keys};
}

bool isLetter(char sign) { return sign >= 'a' && sign <= 'z'; }

Result<Request> parsePause(Words words) {
    if (words.empty())
        return Failure{message("%1 verwacht een duur (bijvoorbeeld 15m)", {"pause"})};
    // "15 m", as people write it.
    if (words.size() == 2 && !words[1].empty() && isLetter(words[1].front()))
        if (const auto seconds = pauseDuration(std::string(words[0]) + ' ' + std::string(words[1])))
            return Request{request::Pause{*seconds}};
    if (const auto fault = readOptions("pause", words.subspan(1), std::array<Option, 0>{}))
        return *fault;
    const auto seconds = pauseDuration(words.front());
    if (!seconds) return Failure{Message("pause: %1", {seconds.failure().message})};
    return Request{request::Pause{*seconds}};
}

template <typename Kind>
Result<Request> parseBare(std::string_view word, Words words) {
    if (const auto fault = readOptions(word, words, std::array<Option, 0>{})) return *fault;
    return Request{Kind{}};
}

constexpr std::array<std::string_view, 5> requests{"status", "keys", "lock", "pause", "resume"};

} // namespace

bool isRequest(std::string_view word) {
    return std::ranges::find(requests, word) != requests.end();
}

Result<Request> parseRequest(const std::vector<std::string_view>& words) {
    const std::string_view word = words.front();
    const Words rest = Words(words).subspan(1);
    if (word == "status") return parseStatus(rest);
    if (word == "keys") return parseKeys(rest);
    if (word == "pause") return parsePause(rest);
    if (word == "lock") return parseBare<request::Lock>(word, rest);
    return parseBare<request::Resume>(word, rest);
}

} // namespace wegslot::control
