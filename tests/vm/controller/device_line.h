// Reads the instruction that puts a device on the air, the one with many options.
#pragma once

#include "instruction.h"

namespace controller {

/// The words of the line, "device" included.
Instruction parseDevice(const std::vector<std::string_view>& words);

/// -127 to 20 dBm, or 127 for "not known".
std::optional<int> parseRssiValue(std::string_view text);

} // namespace controller
