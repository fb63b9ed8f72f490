#include "platform/locker_lock.h"

#include "log/log.h"

namespace wegslot {

LockCommand LockerLock::command() const {
    return own_.empty() ? installedLocker(processes_, display_) : own_;
}

void LockerLock::setOwn(LockCommand own) {
    own_ = std::move(own);
    watch_.setPatterns(lockerPatterns(own_));
}

void LockerLock::request(std::function<void()> refused) {
    if (watch_.look()) return; // two would fight for the screen
    const LockCommand words = command();
    if (words.empty()) return refused();
    const auto process = processes_.start(words);
    if (!process) {
        Log::write("Schermvergrendeling niet gestart: " + process.failure().message.builtIn());
        return refused();
    }
    watch_.follow(*process);
}

} // namespace wegslot
