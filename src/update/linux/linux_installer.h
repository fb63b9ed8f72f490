// Updates on a Linux file system: the image is a gzipped tar archive of the folder that the
// application is, unpacked in a folder of our own for temporary files.
#pragma once

#include "update/installer.h"

#include <filesystem>
#include <string>
#include <utility>

namespace wegslot {

class LinuxInstaller final : public Installer {
public:
    /// `app`: the folder of the installed application, which says to be `identifier`.
    LinuxInstaller(std::filesystem::path app, std::string identifier,
                   std::filesystem::path temporary)
        : app_(std::move(app)),
          identifier_(std::move(identifier)),
          temporary_(std::move(temporary)) {}

    [[nodiscard]] Result<std::string> unpack(std::span<const std::uint8_t> image) override;
    [[nodiscard]] Result<Ready> examine(const std::string& app, const Release& release) override;
    [[nodiscard]] bool mayReplace() const override;
    [[nodiscard]] Result<Ready> launchSwap(const std::string& app) override;
    void discard(const std::string& app) override;

private:
    void removeLeftovers() const;

    std::filesystem::path app_;
    std::string identifier_;
    std::filesystem::path temporary_;
};

} // namespace wegslot
