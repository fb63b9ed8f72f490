#include "app/linux/standard_output.h"

#include "base/system_error.h"

#include <cerrno>
#include <optional>
#include <string>
#include <utility>

#include <poll.h>
#include <unistd.h>

namespace wegslot {
namespace {

// Not by the C library's streams: the program's end would wait for what they hold.
std::optional<Failure> writeOut(std::string_view line) {
    while (!line.empty()) {
        const ssize_t written = write(STDOUT_FILENO, line.data(), line.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0 && errno == EAGAIN) {
            pollfd asked{.fd = STDOUT_FILENO, .events = POLLOUT, .revents = 0};
            poll(&asked, 1, -1);
            continue;
        }
        if (written < 0) return Failure{systemError(errno)};
        line.remove_prefix(static_cast<std::size_t>(written));
    }
    return std::nullopt;
}

} // namespace

StandardOutput::StandardOutput() : lines_(threads_.start(writeOut, capacity)) {}

bool StandardOutput::print(std::string_view line) {
    std::string whole(line);
    whole.push_back('\n');
    return lines_.put(std::move(whole));
}

} // namespace wegslot
