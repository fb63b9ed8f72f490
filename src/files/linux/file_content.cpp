#include "files/linux/file_content.h"

#include <array>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace wegslot {

std::optional<std::string> contentOf(const std::filesystem::path& file, std::size_t most) {
    const int descriptor = open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) return std::nullopt;
    struct stat facts {};
    ssize_t got = fstat(descriptor, &facts) == 0 && S_ISREG(facts.st_mode) ? 1 : -1;
    std::string content;
    std::array<char, 8192> block; // NOLINT: filled by read
    while (got > 0 && content.size() <= most) {
        got = read(descriptor, block.data(), block.size());
        if (got < 0 && errno == EINTR)
            got = 1;
        else if (got > 0)
            content.append(block.data(), static_cast<std::size_t>(got));
    }
    close(descriptor);
    if (got < 0 || content.size() > most) return std::nullopt;
    return content;
}

} // namespace wegslot
