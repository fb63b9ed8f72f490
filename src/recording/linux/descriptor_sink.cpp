#include "recording/linux/descriptor_sink.h"

#include "base/system_error.h"
#include "files/linux/own_file.h"
#include "recording/linux/foreign_descriptor.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <memory>
#include <string>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace wegslot {
namespace {

/// A recording of a thousand advertisements a second gets through a disk's bad moment.
constexpr std::size_t capacity = 4 << 20;
constexpr std::size_t mostThreads = 4;

/// Used on the recording's own thread alone, where it may hang.
class Destination {
public:
    explicit Destination(int descriptor) : descriptor_(descriptor) {}

    ~Destination() { close(descriptor_); }

    Destination(const Destination&) = delete;
    Destination& operator=(const Destination&) = delete;

    std::optional<Failure> write(std::string_view line) {
        empty();
        while (!line.empty()) {
            pollfd asked{.fd = descriptor_, .events = POLLOUT, .revents = 0};
            poll(&asked, 1, -1); // what is wrong with it the write says
            // So much at most that a pipe that takes anything takes all of it.
            const std::size_t size = std::min<std::size_t>(line.size(), PIPE_BUF);
            const ssize_t written = ::write(descriptor_, line.data(), size);
            if (written < 0 && (errno == EINTR || errno == EAGAIN)) continue;
            if (written < 0) return Failure{systemError(errno)};
            line.remove_prefix(static_cast<std::size_t>(written));
        }
        return std::nullopt;
    }

private:
    /// What was in it goes only when something comes in its place.
    void empty() {
        if (isEmptied_) return;
        isEmptied_ = true;
        [[maybe_unused]] const int result = ftruncate(descriptor_, 0); // a pipe holds nothing
    }

    int descriptor_;
    bool isEmptied_ = false;
};

} // namespace

Result<DescriptorSink> descriptorSink(LineThreads& threads, int descriptor) {
    Message refusal;
    if (!isFileOrPipe(descriptor))
        refusal = message("opnemen kan alleen in een bestand of een pijp");
    if (threads.count() >= mostThreads)
        refusal = message("eerdere opnames worden nog weggeschreven");
    if (!refusal.isEmpty()) {
        closeElsewhere(descriptor);
        return Failure{refusal};
    }
    const auto lines = std::make_shared<LineQueue>(
        threads.start([destination = std::make_shared<Destination>(descriptor)](
                          std::string_view line) { return destination->write(line); },
                      capacity));
    return DescriptorSink{[lines](std::string_view line) -> std::optional<Failure> {
        if (lines->put(std::string(line))) return std::nullopt;
        return lines->failure().value_or(Failure{message("de lezer houdt het niet bij")});
    }};
}

Result<int> recordingFile(const std::string& path, Existing existing) {
    constexpr mode_t ownerOnly = 0600; // who is near is nobody else's business
    // Without waiting, or a pipe that nobody reads would hold up the start.
    const int descriptor =
        openOwn(path, O_WRONLY | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, ownerOnly);
    const auto failed = [&](const Message& reason) {
        if (descriptor >= 0) close(descriptor);
        return Failure{message("kan %1 niet schrijven: %2", {path, reason})};
    };
    if (descriptor < 0 && errno == ELOOP)
        return failed(message("een verwijzing van iemand anders"));
    struct stat facts {};
    if (descriptor < 0 || fstat(descriptor, &facts) != 0) return failed(systemError(errno));
    if (!S_ISREG(facts.st_mode)) return descriptor;
    if (facts.st_size > 0 && existing == Existing::kept)
        return failed(message("er staat al iets in (--force vervangt het)"));
    // One that was there already may have been for everybody.
    if (fchmod(descriptor, ownerOnly) != 0) return failed(systemError(errno));
    return descriptor;
}

} // namespace wegslot
