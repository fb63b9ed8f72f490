// Replaces a file's content in one step: readers find the old content or the new, never a part of
// either, whatever happens in between.
#pragma once

#include <filesystem>
#include <string_view>

#include <sys/types.h>

namespace wegslot {

/// Replaces `file` whole, or leaves it as it is; where it is a link, what that leads to. Missing
/// folders are made, the last for its owner alone. Answers an error number, 0 for none.
[[nodiscard]] int replaceFile(const std::filesystem::path& file, std::string_view content,
                              mode_t mode);

} // namespace wegslot
