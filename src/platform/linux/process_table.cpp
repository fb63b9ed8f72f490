#include "platform/linux/process_table.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

namespace wegslot::process_table {
namespace {

namespace fs = std::filesystem;

/// What a file of a process says, its first kilobytes at most; empty when it has gone.
std::string contentOf(const fs::path& file) {
    const int handle = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (handle < 0) return {};
    std::array<char, 8192> bytes; // NOLINT: filled by read
    const auto count = read(handle, bytes.data(), bytes.size());
    close(handle);
    return {bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
}

/// The real user is the first number, the effective one the second.
std::optional<uid_t> numberedUser(const fs::path& process, int place) {
    const std::string status = contentOf(process / "status");
    constexpr std::string_view label = "\nUid:\t";
    const auto at = status.find(label);
    if (at == std::string::npos || status.find("\nState:\tZ") != std::string::npos)
        return std::nullopt;
    const char* digits = status.data() + at + label.size();
    const char* const end = status.data() + status.size();
    for (uid_t user = 0; place >= 0; --place) {
        const auto parsed = std::from_chars(digits, end, user);
        if (parsed.ec != std::errc()) return std::nullopt;
        if (place == 0) return user;
        digits = parsed.ptr + 1; // past the tab
        if (digits >= end) return std::nullopt;
    }
    return std::nullopt;
}

} // namespace

std::vector<pid_t> processes(const fs::path& table) {
    std::vector<pid_t> found;
    std::error_code error;
    for (fs::directory_iterator entry(table, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        pid_t process = 0;
        const auto parsed = std::from_chars(name.data(), name.data() + name.size(), process);
        if (parsed.ec == std::errc() && parsed.ptr == name.data() + name.size())
            found.push_back(process);
    }
    return found;
}

std::string nameOf(const fs::path& process) {
    std::string name = contentOf(process / "comm");
    if (name.ends_with('\n')) name.pop_back();
    return name;
}

std::optional<uid_t> userOf(const fs::path& process) { return numberedUser(process, 0); }

std::optional<uid_t> effectiveUserOf(const fs::path& process) { return numberedUser(process, 1); }

std::optional<std::string> executableOf(const fs::path& process) {
    std::error_code unreadable;
    const fs::path file = fs::read_symlink(process / "exe", unreadable);
    if (unreadable) return std::nullopt;
    std::string name = file.filename().string();
    constexpr std::string_view replaced = " (deleted)"; // as the kernel marks it
    if (name.ends_with(replaced)) name.resize(name.size() - replaced.size());
    return name;
}

bool sharesOurWorld(const fs::path& process) {
    for (const char* const kind : {"pid", "mnt"}) {
        std::error_code unreadable;
        const fs::path theirs = fs::read_symlink(process / "ns" / kind, unreadable);
        if (unreadable) continue;
        const fs::path ours = fs::read_symlink(fs::path("/proc/self/ns") / kind, unreadable);
        if (!unreadable && theirs != ours) return false;
    }
    return true;
}

std::vector<std::string> wordsOf(const fs::path& process) {
    const std::string line = contentOf(process / "cmdline");
    std::vector<std::string> words;
    for (std::size_t start = 0; start < line.size();) {
        const auto end = std::min(line.find('\0', start), line.size());
        words.push_back(line.substr(start, end - start));
        start = end + 1;
    }
    return words;
}

} // namespace wegslot::process_table
