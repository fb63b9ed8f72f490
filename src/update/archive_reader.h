// The one reader of images: a gzipped tar archive of one folder, "Wegslot.app". Accepts only the
// plainest archives (ustar, files, folders and links that stay inside), so that nothing in one can
// mean anything but what was looked at. Whoever unpacks an image does it through this reader.
#pragma once

#include "base/translation.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace wegslot {

/// What an image may become, in bytes.
inline constexpr std::uint64_t largestUnpacked = std::uint64_t{1} << 30U;

/// The folder that holds the application.
inline constexpr auto bundleFolder = "Wegslot.app";

/// One of the things in an archive, as it passed the check.
struct ArchiveMember {
    enum class Kind { file, folder, link };

    Kind kind;
    /// From "Wegslot.app" on; each part names something, and none before is a link of the archive.
    std::vector<std::string> path;
    unsigned mode;      ///< the nine permission bits
    std::string target; ///< of a link: relative, and inside the application's folder
};

/// Is told what is in an archive, in its order. An answer is a failure and ends the reading.
class ArchiveReceiver {
public:
    ArchiveReceiver() = default;
    ArchiveReceiver(const ArchiveReceiver&) = delete;
    ArchiveReceiver& operator=(const ArchiveReceiver&) = delete;
    virtual ~ArchiveReceiver() = default;

    virtual std::optional<Message> member(const ArchiveMember& member) = 0;

    /// More of the file that was told last.
    virtual std::optional<Message> content(std::span<const std::uint8_t> bytes) = 0;
};

/// Reads as far as the first objection or failure, which is the answer, naming the member; keeps
/// nothing of what it has unpacked. `most`: bytes of all files together. What comes before an
/// objection has been told by then: whoever must not begin in vain asks `objectionTo` first.
[[nodiscard]] std::optional<Message> readArchive(std::span<const std::uint8_t> image,
                                                 ArchiveReceiver& receiver,
                                                 std::uint64_t most = largestUnpacked);

/// Why the image is not to be unpacked; nothing when there is no objection.
[[nodiscard]] std::optional<std::string> objectionTo(std::span<const std::uint8_t> image,
                                                     std::uint64_t most = largestUnpacked);

} // namespace wegslot
