// The log as a file: one line a message, stamped with the local time of the call. Lines are
// appended by a thread of the log's own, so that nobody waits for the disk, in the order of the
// calls. Failures are swallowed: a full disk must not stop the lock.
#pragma once

#include "base/clock.h"
#include "model/log.h"

#include <condition_variable>
#include <deque>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>

namespace wegslot {

class FileLog final : public LogDestination {
public:
    /// `clock` must outlive the log and be readable from any thread. The folder of `file` is
    /// not made here.
    FileLog(std::filesystem::path file, const Clock& clock);

    /// Writes what was still waiting.
    ~FileLog() override;

    /// "Library/Logs/Wegslot.log" under `home`.
    [[nodiscard]] static std::filesystem::path pathUnder(const std::filesystem::path& home);

    void write(std::string_view message) override;

private:
    void run();

    const std::filesystem::path file_;
    const Clock& clock_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::string> waiting_;
    bool ending_ = false;
    std::thread thread_;
};

} // namespace wegslot
