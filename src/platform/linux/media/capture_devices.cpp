#include "platform/linux/media/capture_devices.h"

#include "platform/linux/process_table.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <memory>
#include <optional>
#include <string_view>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace wegslot {
namespace {

namespace fs = std::filesystem;

// The sound and picture servers hold cameras open that nobody uses; whether somebody does is
// known by asking PipeWire. The kernel cuts a program's name at 15 characters.
constexpr std::array<std::string_view, 3> servers{"pipewire", "wireplumber", "pipewire-media-"};

constexpr std::string_view devicePrefix = "video";
constexpr std::string_view videoMajor = "81:";

class Folder {
public:
    explicit Folder(const fs::path& path)
        : folder_(opendir(path.c_str()), [](DIR* folder) { closedir(folder); }) {}

    [[nodiscard]] bool isOpen() const { return folder_ != nullptr; }

    /// The next name, valid until the following call; null at the end.
    [[nodiscard]] const char* next() const {
        const dirent* const entry = isOpen() ? readdir(folder_.get()) : nullptr;
        return entry == nullptr ? nullptr : entry->d_name;
    }

    /// Where the link `name` in the folder points; empty when it went away.
    [[nodiscard]] std::string_view linkTarget(const char* name) {
        const ssize_t size = readlinkat(dirfd(folder_.get()), name, target_.data(), target_.size());
        return {target_.data(), size < 0 ? 0 : static_cast<std::size_t>(size)};
    }

private:
    std::unique_ptr<DIR, void (*)(DIR*)> folder_;
    std::array<char, 512> target_{}; // devices have short paths; the rest may be cut
};

bool isNumber(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

bool isDeviceName(std::string_view name) {
    return name.starts_with(devicePrefix) && isNumber(name.substr(devicePrefix.size()));
}

std::optional<std::string> firstLineWith(const fs::path& file, std::string_view start) {
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);)
        if (line.starts_with(start)) return line.substr(start.size());
    return std::nullopt;
}

} // namespace

CaptureDevices::CaptureDevices() : CaptureDevices(World{.user = getuid(), .self = getpid()}) {}

bool CaptureDevices::isThere() const { return access(world_.processes.c_str(), R_OK | X_OK) == 0; }

std::optional<bool> CaptureDevices::inUse() {
    if (!hasDevices()) return false;
    if (!isThere()) return std::nullopt;
    for (const pid_t process : process_table::processes(world_.processes))
        if (process != world_.self && usesCamera(world_.processes / std::to_string(process)))
            return true;
    return false;
}

bool CaptureDevices::hasDevices() const {
    const Folder devices(world_.devices);
    while (const char* const device = devices.next())
        if (isDeviceName(device)) return true;
    return false;
}

bool CaptureDevices::usesCamera(const fs::path& process) const {
    // Another user's process refuses, and one that has ended is gone: both hold nothing then.
    Folder open(process / "fd");
    const auto prefix = world_.devices.string() + "/";
    while (const char* const file = open.next()) {
        auto target = open.linkTarget(file);
        if (!target.starts_with(prefix)) continue;
        target.remove_prefix(prefix.size());
        if (isDeviceName(target) && counts(process) && captures(std::string(target))) return true;
    }
    return false;
}

bool CaptureDevices::counts(const fs::path& process) const {
    const std::string name = process_table::nameOf(process); // empty: it has just ended
    return !name.empty() && process_table::userOf(process) == world_.user &&
           std::ranges::find(servers, name) == servers.end();
}

bool CaptureDevices::captures(const std::string& device) const {
    // Codecs, radios and metadata have such devices, too. Where nothing is recorded about one, it
    // counts: a pause too many is better than a locked screen in a call.
    const auto number = firstLineWith(world_.numbers / device / "dev", videoMajor);
    if (!number || !isNumber(*number)) return true;
    const auto abilities =
        firstLineWith(world_.records / ("c81:" + *number), "E:ID_V4L_CAPABILITIES=");
    return !abilities || abilities->find(":capture:") != std::string::npos;
}

} // namespace wegslot
