#include "files/linux/replace_file.h"

#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace wegslot {
namespace {

namespace fs = std::filesystem;

bool writeAll(int handle, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto written = ::write(handle, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return fsync(handle) == 0;
}

/// Where a link leads; some people keep their files elsewhere and only link to them.
fs::path behind(const fs::path& file) {
    std::error_code none;
    const fs::path real = fs::canonical(file, none);
    return none ? file : real;
}

} // namespace

int replaceFile(const fs::path& file, std::string_view content, mode_t mode) {
    std::error_code ignored;
    if (fs::create_directories(file.parent_path(), ignored))
        fs::permissions(file.parent_path(), fs::perms::owner_all, ignored);
    const fs::path target = behind(file);
    const fs::path temporary = target.string() + ".new";
    constexpr mode_t ownerOnly = 0600;
    unlink(temporary.c_str()); // left by a crash, perhaps with other rights
    const int handle = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, ownerOnly);
    if (handle < 0) return errno;
    // Whatever the process's mask takes away.
    const bool complete = fchmod(handle, mode) == 0 && writeAll(handle, content);
    const int error = errno;
    close(handle);
    if (complete && rename(temporary.c_str(), target.c_str()) == 0) return 0;
    const int failure = complete ? errno : error;
    unlink(temporary.c_str());
    return failure;
}

} // namespace wegslot
