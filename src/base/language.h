// In which language a program speaks, from its environment.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace wegslot {

/// A variable of the environment; empty when it is not set.
using Variable = std::function<std::string(const char* name)>;

/// The languages to look for a catalogue of, best first, each as folders of catalogues are called:
/// "nl_BE" and then "nl", and English at the end. None where the texts are wanted as they stand in
/// the code: the locale is C, POSIX or a C with an encoding, or none is chosen.
[[nodiscard]] std::vector<std::string> languages(const Variable& variable);

} // namespace wegslot
