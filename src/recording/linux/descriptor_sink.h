// Where the lines of a recording go: a file, or whatever else a descriptor stands for. Each line is
// written at once and whole, so that what ends the program ends no line but the last.
#pragma once

#include "base/result.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace wegslot {

/// Takes one line; why it could not, if it could not. Never waits: a reader at the other end of a
/// pipe that does not keep up is a failure too. The copies of one sink share its descriptor.
using DescriptorSink = std::function<std::optional<Failure>(std::string_view line)>;

/// Owns `descriptor` from here on, and closes it when the last copy has gone.
[[nodiscard]] DescriptorSink descriptorSink(int descriptor);

/// The same, of a file whose content goes.
[[nodiscard]] DescriptorSink emptiedSink(int descriptor);

/// Opens the file `path` for a recording, for its owner's eyes only. What is in it stays until the
/// recording begins.
[[nodiscard]] Result<int> recordingFile(const std::string& path);

} // namespace wegslot
