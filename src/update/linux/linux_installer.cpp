#include "update/linux/linux_installer.h"

#include "base/system_error.h"
#include "base/text.h"
#include "base/uuid.h"
#include "files/linux/file_content.h"
#include "files/linux/replace_file.h"
#include "log/log.h"
#include "platform/linux/random_uuid.h"
#include "platform/linux/spawn.h"
#include "update/bundle_info.h"
#include "update/linux/only_ours.h"
#include "update/linux/swap_script.h"
#include "update/linux/tool.h"
#include "update/linux/unpacked_folder.h"

#include <cerrno>
#include <optional>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace wegslot {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr std::string_view folderPrefix = "Wegslot-update-";

/// For a program to say who it is.
constexpr Nanoseconds versionPatience = 5s;

Failure failureAt(const fs::path& path, int error) {
    return Failure{Message("%1: %2", {path.filename().string(), systemError(error)})};
}

bool isOwnFolder(const fs::path& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
           status.st_uid == geteuid();
}

Result<Ready> writeFile(const fs::path& path, std::string_view content) {
    const int error = replaceFile(path, content, 0600);
    if (error != 0) return failureAt(path, error);
    return Ready{};
}

Result<Ready> unpackInto(const fs::path& folder, std::span<const std::uint8_t> image) {
    UnpackedFolder unpacked(folder);
    auto failure = readArchive(image, unpacked);
    if (!failure) failure = unpacked.finish();
    if (failure) return Failure{*failure};
    return Ready{};
}

} // namespace

Result<std::string> LinuxInstaller::unpack(std::span<const std::uint8_t> image) {
    removeLeftovers();
    if (const auto objection = objectionTo(image)) {
        Log::write("Updatebestand geweigerd: " + *objection);
        return Failure{unexpectedApp()};
    }
    const fs::path folder = temporary_ / (std::string(folderPrefix) + randomUuid().text());
    std::error_code ignored;
    fs::create_directories(temporary_, ignored);
    if (mkdir(folder.c_str(), 0700) != 0) return failureAt(folder, errno);
    const fs::path app = folder / bundleFolder;
    if (const auto unpacked = unpackInto(folder, image); !unpacked) {
        discard(app);
        return unpacked.failure();
    }
    return app.string();
}

Result<Ready> LinuxInstaller::examine(const std::string& app, const Release& release) {
    constexpr std::size_t largestInfo = 65536;
    const BundleInfo info =
        readBundleInfo(contentOf(fs::path(app) / infoFile, largestInfo).value_or(""));
    if (info.identifier != identifier_ || info.build != release.build) {
        Log::write("Updatebestand geweigerd: het is " + info.identifier + " " +
                   std::to_string(info.build));
        return Failure{unexpectedApp()};
    }
    const auto answer = runTool({fs::path(app) / programFile, "--version"}, versionPatience);
    // Whatever the feed calls it: a build has one name, its own.
    if (answer && buildInVersionLine(*answer) == release.build) return Ready{};
    Log::write("Updatebestand geweigerd: " + (answer
                                                  ? "het programma noemt zich " + printable(*answer)
                                                  : answer.failure().message.builtIn()));
    return Failure{unexpectedApp()};
}

bool LinuxInstaller::mayReplace() const {
    if (access(app_.parent_path().c_str(), W_OK | X_OK) != 0 || access(app_.c_str(), W_OK) != 0)
        return false;
    // Where others write, too, one of them may put their own in the place of what comes there.
    return isOnlyOurs(app_.parent_path()) && isOnlyOurs(app_) && isOnlyOurs(app_ / infoFile);
}

Result<Ready> LinuxInstaller::launchSwap(const std::string& app) {
    const fs::path script = fs::path(app).parent_path() / "installer.sh";
    if (const auto written = writeFile(script, swapScript); !written) return written.failure();
    const auto started = spawn({"/bin/sh", script, std::to_string(getpid()), app, app_.string()});
    if (!started) return started.failure();
    return Ready{};
}

void LinuxInstaller::discard(const std::string& app) {
    std::error_code ignored;
    fs::remove_all(fs::path(app).parent_path(), ignored);
}

void LinuxInstaller::removeLeftovers() const {
    std::error_code ignored;
    std::vector<fs::path> leftovers;
    for (const auto& entry : fs::directory_iterator(temporary_, ignored)) {
        const std::string name = entry.path().filename();
        if (name.starts_with(folderPrefix) && Uuid::parse(name.substr(folderPrefix.size())) &&
            isOwnFolder(entry.path()))
            leftovers.push_back(entry.path());
    }
    for (const fs::path& folder : leftovers)
        fs::remove_all(folder, ignored);
}

} // namespace wegslot
