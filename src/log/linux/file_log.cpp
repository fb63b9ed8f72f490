#include "log/linux/file_log.h"

#include "base/text.h"

#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace wegslot {
namespace {

int opened(const std::filesystem::path& file) {
    constexpr mode_t readableByOwner = 0600; // names of devices are nobody else's business
    // Without waiting: a pipe that nobody reads takes nothing.
    return open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY | O_NONBLOCK,
                readableByOwner);
}

bool isFull(int handle) {
    struct stat facts {};
    return fstat(handle, &facts) == 0 && S_ISREG(facts.st_mode) &&
           static_cast<std::uintmax_t>(facts.st_size) >= FileLog::largest;
}

// The file is opened for every line, so that it may be moved away or deleted at any time. One
// write in append mode lands whole: no other process's line comes between.
void append(const std::filesystem::path& file, std::string_view line) {
    int handle = opened(file);
    if (handle >= 0 && isFull(handle)) {
        std::error_code staysAsItIs;
        std::filesystem::rename(file, file.string() + ".1", staysAsItIs);
        close(handle);
        handle = opened(file);
    }
    if (handle < 0) return;
    [[maybe_unused]] const auto written = ::write(handle, line.data(), line.size());
    close(handle);
}

} // namespace

FileLog::FileLog(std::filesystem::path file, const Clock& clock)
    : clock_(clock),
      lines_(threads_.start(
          [file = std::move(file)](std::string_view line) {
              append(file, line);
              return std::nullopt;
          },
          capacity)) {}

std::filesystem::path FileLog::pathUnder(const std::filesystem::path& home) {
    return home / "Library" / "Logs" / "Wegslot.log";
}

FileLog::~FileLog() {
    if (const auto more = sightings_.leftOut(clock_.now(), true)) put(*more);
}

void FileLog::write(std::string_view message) {
    if (!isUtf8(message)) return;
    const std::lock_guard lock(mutex_);
    const TimePoint now = clock_.now();
    if (const auto more = sightings_.leftOut(now)) put(*more);
    if (sightings_.allows(message, now)) put(message);
}

void FileLog::put(std::string_view message) {
    std::string line = localText(clock_.wallClock());
    line.append(" ").append(message).append("\n");
    lines_.put(std::move(line));
}

} // namespace wegslot
