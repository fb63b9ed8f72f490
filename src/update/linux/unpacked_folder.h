// What an archive becomes on a disk: written by name below one folder, through descriptors, so that
// no link that lies there is ever followed and nothing lands outside of it.
#pragma once

#include "update/archive_reader.h"

#include <filesystem>
#include <utility>

#include <sys/types.h>

namespace wegslot {

class UnpackedFolder final : public ArchiveReceiver {
public:
    /// `folder` is there and its user's alone. No file or link in it is replaced: a name that is
    /// taken is a failure.
    explicit UnpackedFolder(const std::filesystem::path& folder);
    ~UnpackedFolder() override;

    /// Answers name the member and say what the system says. Permissions are the archive's as far
    /// as the process's mask allows.
    std::optional<Message> member(const ArchiveMember& member) override;
    std::optional<Message> content(std::span<const std::uint8_t> bytes) override;

    /// The last file is closed, and folders get the permissions that would have been in the way.
    [[nodiscard]] std::optional<Message> finish();

private:
    [[nodiscard]] int folderAt(std::span<const std::string> path) const;
    [[nodiscard]] bool closeFile();

    int root_;
    int file_ = -1;
    std::string name_; ///< of the member at work, for failures
    std::vector<std::pair<std::vector<std::string>, mode_t>> folders_;
};

} // namespace wegslot
