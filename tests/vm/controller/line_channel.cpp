#include "line_channel.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>

namespace controller {

LineChannel::LineChannel(Descriptor both)
    : input_(std::move(both)),
      output_(::dup(input_.number())) {}

LineChannel::LineChannel(Descriptor input, Descriptor output)
    : input_(std::move(input)),
      output_(std::move(output)) {}

bool LineChannel::serve(const Answer& answer) {
    std::array<char, 4096> piece{};
    const ssize_t length = ::read(input_.number(), piece.data(), piece.size());
    if (length < 0) return errno == EINTR || errno == EAGAIN;
    if (length == 0) return false;
    received_.append(piece.data(), static_cast<std::size_t>(length));

    std::size_t end = received_.find('\n');
    while (end != std::string::npos) {
        const std::string line = received_.substr(0, end);
        received_.erase(0, end + 1);
        if (!write(answer(line) + '\n')) return false;
        end = received_.find('\n');
    }
    return true;
}

bool LineChannel::write(std::string text) {
    while (!text.empty()) {
        const ssize_t written = ::write(output_.number(), text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        text.erase(0, static_cast<std::size_t>(written));
    }
    return true;
}

} // namespace controller
