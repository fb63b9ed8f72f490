// Starting with the user's session, as the Desktop Application Autostart Specification describes:
// an entry in a folder of the user's that goes before the system's. Nothing is remembered here,
// because desktops, packages and the user change the entries too.
#pragma once

#include "platform/linux/media/desktop_entry.h"
#include "platform/processes.h"
#include "ui/login_item.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace wegslot {

class AutostartItem final : public LoginItem {
public:
    static constexpr auto fileName = "nl.wegslot.Wegslot.desktop";

    /// `folders`: where entries are, the user's first; never none. `program`: what is to be
    /// started, by its path from the root. `desktops`: what XDG_CURRENT_DESKTOP says.
    AutostartItem(std::vector<std::filesystem::path> folders, std::filesystem::path program,
                  std::string desktops, const Processes& processes);

    /// Whether this desktop will start what the first entry found names. That may be another
    /// program than this one: who wrote it will know why.
    [[nodiscard]] bool isEnabled() const override;

    /// Has the user's entry start this very program, or takes it away, or hides the system's by
    /// it. What else somebody wrote into it stays. The failure names the file.
    [[nodiscard]] std::optional<Failure> setEnabled(bool enabled) override;

private:
    [[nodiscard]] std::optional<Failure> switchOn(const std::string& before) const;
    [[nodiscard]] std::optional<Failure> switchOff(const std::string& before) const;
    [[nodiscard]] std::string switchedOn(const std::string& text) const;
    [[nodiscard]] bool isStarted(const DesktopEntry& entry) const;
    [[nodiscard]] bool isShown(const DesktopEntry& entry) const;
    [[nodiscard]] bool startsThisProgram(const DesktopEntry& entry) const;
    [[nodiscard]] bool isOwn(const std::string& text) const;
    [[nodiscard]] bool hasSharedEntry() const;
    [[nodiscard]] std::filesystem::path ownFile() const { return folders_.front() / fileName; }

    std::vector<std::filesystem::path> folders_;
    std::filesystem::path program_;
    std::string desktops_;
    const Processes& processes_;
};

} // namespace wegslot
