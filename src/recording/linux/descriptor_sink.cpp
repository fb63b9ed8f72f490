#include "recording/linux/descriptor_sink.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <ctime>
#include <memory>
#include <string>

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

namespace wegslot {
namespace {

/// Keeps the signals away that a write may raise: a reader that went and a limit on the size of
/// files are errors here, not the end of the program.
class WithoutSignals {
public:
    WithoutSignals() {
        sigemptyset(&raised_);
        sigaddset(&raised_, SIGPIPE);
        sigaddset(&raised_, SIGXFSZ);
        pthread_sigmask(SIG_BLOCK, &raised_, &before_);
    }

    ~WithoutSignals() {
        const int error = errno;
        const timespec atOnce{};
        while (sigtimedwait(&raised_, nullptr, &atOnce) > 0) {
        }
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
        errno = error;
    }

    WithoutSignals(const WithoutSignals&) = delete;
    WithoutSignals& operator=(const WithoutSignals&) = delete;

private:
    sigset_t raised_{};
    sigset_t before_{};
};

class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}

    ~Descriptor() { close(number_); }

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    [[nodiscard]] std::optional<Failure> write(std::string_view line) const {
        const WithoutSignals quiet;
        while (!line.empty()) {
            if (!takesMore()) return Failure{"de lezer houdt het niet bij"};
            // So much at most that a pipe that takes anything takes all of it.
            const std::size_t size = std::min<std::size_t>(line.size(), PIPE_BUF);
            const ssize_t written = ::write(number_, line.data(), size);
            if (written < 0 && errno == EINTR) continue;
            if (written < 0) return Failure{std::strerror(errno)};
            line.remove_prefix(static_cast<std::size_t>(written));
        }
        return std::nullopt;
    }

private:
    [[nodiscard]] bool takesMore() const {
        pollfd asked{.fd = number_, .events = POLLOUT, .revents = 0};
        return poll(&asked, 1, 0) != 0; // what is wrong with it the write says
    }

    int number_;
};

} // namespace

DescriptorSink descriptorSink(int descriptor) {
    return [owned = std::make_shared<const Descriptor>(descriptor)](std::string_view line) {
        return owned->write(line);
    };
}

Result<int> recordingFile(const std::string& path) {
    constexpr mode_t ownerOnly = 0600; // who is near is nobody else's business
    // Without waiting, or a pipe that nobody reads would hold up the start.
    const int descriptor =
        open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, ownerOnly);
    struct stat facts {};
    // One that was there already may have been for everybody.
    if (descriptor >= 0 && fstat(descriptor, &facts) == 0 &&
        (!S_ISREG(facts.st_mode) || fchmod(descriptor, ownerOnly) == 0))
        return descriptor;
    const int reason = errno;
    if (descriptor >= 0) close(descriptor);
    return Failure{"kan " + path + " niet schrijven: " + std::strerror(reason)};
}

DescriptorSink emptiedSink(int descriptor) {
    [[maybe_unused]] const int result = ftruncate(descriptor, 0); // a pipe holds nothing
    return descriptorSink(descriptor);
}

} // namespace wegslot
