// Whether a program of this user holds a camera's device open, which most browsers and meeting
// programs do, past PipeWire. Reads the links of the process folder and never opens a device:
// that would wake the camera. Programs of other users cannot be seen.
#pragma once

#include "platform/activity_sources.h"

#include <filesystem>
#include <string>

#include <sys/types.h>

namespace wegslot {

class CaptureDevices final : public CameraSource {
public:
    struct World {
        std::filesystem::path processes = "/proc";
        std::filesystem::path devices = "/dev";
        std::filesystem::path numbers = "/sys/class/video4linux"; ///< a folder for each device
        std::filesystem::path records = "/run/udev/data";
        uid_t user; ///< the real one
        pid_t self;
    };

    explicit CaptureDevices(World world) : world_(std::move(world)) {}

    /// The world as it is.
    CaptureDevices();

    [[nodiscard]] std::string name() const override { return "V4L2"; }
    [[nodiscard]] bool isThere() const override;
    [[nodiscard]] std::optional<bool> inUse() override;

private:
    [[nodiscard]] bool hasDevices() const;
    [[nodiscard]] bool usesCamera(const std::filesystem::path& process) const;
    [[nodiscard]] bool counts(const std::filesystem::path& process) const;
    [[nodiscard]] bool captures(const std::string& device) const;

    World world_;
};

} // namespace wegslot
