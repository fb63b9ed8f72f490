// Turns model numbers and names into what a person calls the device, and into the name of the
// symbol that is drawn beside it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace wegslot::DeviceNames {

/// The product family of a model number, or `model` itself when it is unknown. Case-sensitive.
[[nodiscard]] std::string friendly(std::string_view model);

/// The symbol for a device. A watch wins over a phone, so that a phone that carries a watch in
/// its name shows a watch.
[[nodiscard]] std::string symbol(const std::optional<std::string>& name,
                                 const std::optional<std::string>& model);

} // namespace wegslot::DeviceNames
