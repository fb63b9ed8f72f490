// Where the lines of a recording go: a file or a pipe that somebody handed over. It may hang for as
// long as they like, so each has a thread that alone touches it and that nobody waits for.
#pragma once

#include "base/linux/line_threads.h"
#include "base/result.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace wegslot {

/// Takes one line; why it could not, or an earlier one could not, if that is so. Never waits: what
/// does not keep up is a failure too. The copies of one sink share its descriptor.
using DescriptorSink = std::function<std::optional<Failure>(std::string_view line)>;

/// Takes `descriptor` over, empties its file and closes it when the last copy has gone and all is
/// written. Refused where it is neither file nor pipe, or too many before it hang.
[[nodiscard]] Result<DescriptorSink> descriptorSink(LineThreads& threads, int descriptor);

/// What becomes of what is in a file already.
enum class Existing { kept, replaced };

/// Opens the file `path` for a recording, for its owner's eyes only; refuses one with something in
/// it that is to be kept, and a link of somebody else's. What is in it stays until the recording
/// begins.
[[nodiscard]] Result<int> recordingFile(const std::string& path, Existing existing);

} // namespace wegslot
