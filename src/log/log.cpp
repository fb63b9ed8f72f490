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

} // namespace

void Log::write(std::string_view message) {
    const std::lock_guard lock(target().mutex);
    if (target().destination != nullptr) target().destination->write(message);
}

void Log::say(const Message& message) {
    const std::lock_guard lock(target().mutex);
    if (target().destination != nullptr) target().destination->say(message);
}

LogDestination* Log::setDestination(LogDestination* destination) {
    const std::lock_guard lock(target().mutex);
    return std::exchange(target().destination, destination);
}

} // namespace wegslot
