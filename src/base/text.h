// Text of the core: numbers and dates that no locale touches, and the few questions about
// UTF-8 that names from the air raise.
#pragma once

#include "base/time.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace wegslot {

/// The shortest decimal form that reads back as `number`; whole numbers without a fraction.
/// Never in exponent form below 1e15 in size.
[[nodiscard]] std::string decimal(double number);

/// As identifiers, addresses and reasons are written.
inline constexpr std::string_view hexadecimalDigits = "0123456789ABCDEF";

/// The last `digits` hexadecimal digits of `number`.
[[nodiscard]] std::string hexadecimal(std::uint64_t number, std::size_t digits);

/// "2026-11-15 23:50:00 +0000": UTC, the fraction of a second dropped.
[[nodiscard]] std::string utcText(TimePoint instant);

/// "2026-11-15 23:50:00" in the process's time zone, the fraction of a second dropped.
[[nodiscard]] std::string localText(TimePoint instant);

[[nodiscard]] bool isUtf8(std::string_view bytes);

/// `text` (UTF-8) for one line of a terminal: what could pretend to be something else becomes
/// U+FFFD, that is control and format characters, those of writing direction among them, and line
/// separators.
[[nodiscard]] std::string printable(std::string_view text);

/// How many characters `text` (UTF-8) has.
[[nodiscard]] std::size_t characterCount(std::string_view text);

/// `text` (UTF-8) with blanks behind it up to `width` characters, for columns.
[[nodiscard]] std::string padded(std::string text, std::size_t width);

/// `text` (UTF-8) without the blanks, separators, control and format characters at both ends:
/// the categories Z*, Cc and Cf of Unicode 15.
[[nodiscard]] std::string_view trimmed(std::string_view text);

} // namespace wegslot
