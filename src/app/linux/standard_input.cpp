#include "app/linux/standard_input.h"

#include <array>
#include <cerrno>
#include <utility>

#include <unistd.h>

namespace wegslot {

StandardInput::StandardInput(Descriptors& descriptors, std::function<void(std::string_view)> line,
                             std::function<void()> end)
    : line_(std::move(line)),
      end_(std::move(end)),
      reading_(descriptors.onReadable(STDIN_FILENO, [this] { read(); })) {}

void StandardInput::read() {
    // One read for each time that there is something: a second one could wait.
    std::array<char, longestLine> chunk{};
    const ssize_t count = ::read(STDIN_FILENO, chunk.data(), chunk.size());
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) return;
    if (count <= 0) {
        reading_.reset();
        return end_();
    }
    begun_.append(chunk.data(), static_cast<std::size_t>(count));
    for (auto stop = begun_.find('\n'); stop != std::string::npos; stop = begun_.find('\n')) {
        const std::string whole = begun_.substr(0, stop);
        begun_.erase(0, stop + 1);
        line_(whole);
    }
    if (begun_.size() > longestLine) begun_.clear();
}

} // namespace wegslot
