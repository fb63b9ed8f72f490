// Reads a text with a secret in it: into memory of the caller's choice and nowhere else.
#pragma once

#include <cstddef>
#include <functional>
#include <memory_resource>
#include <optional>
#include <string>
#include <string_view>

namespace wegslot {

/// What `descriptor` gives up to its end, or until it `isEnough`, which is asked after each piece;
/// at most one byte more than `most`. Nothing, with the reason in errno, when reading fails.
[[nodiscard]] std::optional<std::pmr::string>
secretText(int descriptor, std::size_t most, std::pmr::memory_resource& memory,
           const std::function<bool(std::string_view)>& isEnough);

/// What a person pastes: a terminal does not show it, and a line ends it that makes it
/// `isEnough`. Otherwise as above.
[[nodiscard]] std::optional<std::pmr::string>
pastedText(int descriptor, std::size_t most, std::pmr::memory_resource& memory,
           const std::function<bool(std::string_view)>& isEnough);

} // namespace wegslot
