// Reading the words of an instruction: numbers, hexadecimal bytes, escaped names.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bytes.h"

namespace controller {

/// The words between spaces; no empty ones.
std::vector<std::string_view> splitWords(std::string_view line);

/// Pairs of hexadecimal digits, in capitals.
std::string toHex(ByteView bytes);

/// From pairs of hexadecimal digits without separators.
std::optional<Bytes> parseHex(std::string_view text);

std::optional<int> parseInteger(std::string_view text);

/// With a decimal point, whatever the user's language.
std::optional<double> parseDecimal(std::string_view text);

/// "Jan%27s%20phone" is "Jan's phone": a word cannot hold a space.
std::optional<std::string> parseEscaped(std::string_view text);

} // namespace controller
