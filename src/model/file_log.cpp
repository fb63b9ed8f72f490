#include "model/file_log.h"

#include "base/text.h"

#include <fcntl.h>
#include <unistd.h>

namespace wegslot {
namespace {

// The file is opened for every line, so that it may be moved away or deleted at any time. One
// write in append mode lands whole: no other process's line comes between.
void append(const std::filesystem::path& file, const std::string& line) {
    constexpr mode_t readableByOwner = 0600; // names of devices are nobody else's business
    const int handle =
        open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, readableByOwner);
    if (handle < 0) return;
    [[maybe_unused]] const auto written = ::write(handle, line.data(), line.size());
    close(handle);
}

} // namespace

FileLog::FileLog(std::filesystem::path file, const Clock& clock)
    : file_(std::move(file)),
      clock_(clock),
      thread_([this] { run(); }) {}

FileLog::~FileLog() {
    {
        const std::lock_guard lock(mutex_);
        ending_ = true;
    }
    changed_.notify_one();
    thread_.join();
}

std::filesystem::path FileLog::pathUnder(const std::filesystem::path& home) {
    return home / "Library" / "Logs" / "Wegslot.log";
}

void FileLog::write(std::string_view message) {
    if (!isUtf8(message)) return;
    std::string line = localText(clock_.wallClock());
    line.append(" ").append(message).append("\n");
    {
        const std::lock_guard lock(mutex_);
        waiting_.push_back(std::move(line));
    }
    changed_.notify_one();
}

void FileLog::run() {
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return ending_ || !waiting_.empty(); });
        if (waiting_.empty()) return;
        const std::string line = std::move(waiting_.front());
        waiting_.pop_front();
        lock.unlock();
        append(file_, line);
        lock.lock();
    }
}

} // namespace wegslot
