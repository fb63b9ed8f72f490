// Collects log messages for a test, in the order they were written.
#pragma once

#include "log/log.h"

#include <string>
#include <utility>
#include <vector>

namespace wegslot {

class CapturedLog final : public LogDestination {
public:
    CapturedLog() : before_(Log::setDestination(this)) {}

    ~CapturedLog() override { Log::setDestination(before_); }

    void write(std::string_view message) override { messages.emplace_back(message); }

    /// Takes the messages so far.
    [[nodiscard]] std::vector<std::string> take() { return std::exchange(messages, {}); }

    std::vector<std::string> messages;

private:
    LogDestination* before_;
};

} // namespace wegslot
