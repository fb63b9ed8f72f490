#include "log/log.h"

#include <mutex>
#include <utility>

namespace wegslot {
namespace {

struct Target {
    std::mutex mutex;
    LogDestination* destination = nullptr;
};

Target& target() {
    static Target shared;
    return shared;
}

thread_local bool isSilent = false;

} // namespace

void Log::write(std::string_view message) {
    if (isSilent) return;
    const std::lock_guard lock(target().mutex);
    if (target().destination != nullptr) target().destination->write(message);
}

void Log::say(const Message& message) {
    if (isSilent) return;
    const std::lock_guard lock(target().mutex);
    if (target().destination != nullptr) target().destination->say(message);
}

LogDestination* Log::setDestination(LogDestination* destination) {
    const std::lock_guard lock(target().mutex);
    return std::exchange(target().destination, destination);
}

LogSilence::LogSilence() : wasSilent_(std::exchange(isSilent, true)) {}

LogSilence::~LogSilence() { isSilent = wasSilent_; }

} // namespace wegslot
