// The port through which an update reaches the disk. It unpacks and judges a new application in a
// folder of its own and hands it to a script; the installed application is touched by that script
// only, after this process has ended.
#pragma once

#include "base/result.h"
#include "update/release.h"

#include <cstdint>
#include <span>
#include <string>

namespace wegslot {

/// The application in an image is not the one that was offered.
[[nodiscard]] inline Message unexpectedApp() {
    return message("De update bevat een onverwachte app");
}

/// A success that has nothing to say.
struct Ready {};

class Installer {
public:
    Installer() = default;
    Installer(const Installer&) = delete;
    Installer& operator=(const Installer&) = delete;
    virtual ~Installer() = default;

    /// Unpacks the image into a new temporary folder; answers where the application in it is. What
    /// earlier attempts left behind goes first, and a failure leaves nothing behind. Any thread.
    [[nodiscard]] virtual Result<std::string> unpack(std::span<const std::uint8_t> image) = 0;

    /// Whether the unpacked application is this one, in the release that was offered: by what it
    /// says in its Info.json, and when it is run and asked. Any thread.
    [[nodiscard]] virtual Result<Ready> examine(const std::string& app, const Release& release) = 0;

    /// Whether this user may replace the installed application.
    [[nodiscard]] virtual bool mayReplace() const = 0;

    /// Starts the script that waits for this process to end, swaps the applications and starts
    /// what is then installed. Does not wait for it.
    [[nodiscard]] virtual Result<Ready> launchSwap(const std::string& app) = 0;

    /// Removes the temporary folder that `app` is in.
    virtual void discard(const std::string& app) = 0;
};

} // namespace wegslot
