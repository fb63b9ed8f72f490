// The log as a file: one line for each message, stamped with the local time of the call. A thread
// of the log's own appends the lines in the order of the calls, so that nobody waits for the disk.
// Failures are swallowed: a full disk must not stop the lock, nor a hanging one the end. Anyone in
// radio range can cause lines, so the file is bounded.
#pragma once

#include "base/clock.h"
#include "base/linux/line_threads.h"
#include "log/log.h"
#include "log/sighting_limit.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <string_view>

namespace wegslot {

class FileLog final : public LogDestination {
public:
    /// A file that has grown so large, in bytes, gives way to a new one and is kept as the one
    /// before it: with ".1" behind its name.
    static constexpr std::uintmax_t largest = 5'000'000;

    /// `clock` must outlive the log and be readable from any thread. The folder of `file` is
    /// not made here. The end waits until all is written, for a second at most.
    FileLog(std::filesystem::path file, const Clock& clock);

    /// Says how many sightings the last minute had more.
    ~FileLog() override;

    /// "Library/Logs/Wegslot.log" under `home`.
    [[nodiscard]] static std::filesystem::path pathUnder(const std::filesystem::path& home);

    void write(std::string_view message) override;

private:
    /// Of a disk that hangs no more is kept than this, in bytes.
    static constexpr std::size_t capacity = 1 << 20;

    void put(std::string_view message);

    const Clock& clock_;
    std::mutex mutex_;
    SightingLimit sightings_;
    LineThreads threads_;
    LineQueue lines_;
};

} // namespace wegslot
