// The place of the history on the disk: one file, what SQLite keeps beside it, and for a while one
// that is being made or one that could not be used. All of it is its user's alone. What cannot be
// done is thrown as a Fault.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>

namespace wegslot::history {

/// The file without links in its folders, of which the last is made where it is missing.
[[nodiscard]] std::filesystem::path madeReady(const std::filesystem::path& file);

/// Puts a file in its place once `fill` has made something of an empty one and let go of it:
/// nobody sees it half made.
void make(const std::filesystem::path& file,
          const std::function<void(const std::filesystem::path&)>& fill);

/// The file without links in its folders, as it is. Nothing where there is none.
[[nodiscard]] std::optional<std::filesystem::path> existing(const std::filesystem::path& file);

/// Where a file goes that cannot be used, in place of the one before it.
[[nodiscard]] std::filesystem::path asideOf(const std::filesystem::path& file);

void setAside(const std::filesystem::path& file);

/// Removes all of it.
void removeAll(const std::filesystem::path& file);

} // namespace wegslot::history
