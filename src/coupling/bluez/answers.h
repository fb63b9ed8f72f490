// What BlueZ's refusals mean to who waits for a phone.
#pragma once

#include "coupling/coupling_radio.h"
#include "dbus/message.h"

#include <optional>
#include <string>

namespace wegslot::coupling {

/// Why this computer cannot appear, from an error's name and text.
[[nodiscard]] Trouble troubleOf(const std::string& error, const std::string& text);
[[nodiscard]] Trouble troubleOf(const dbus::Message& answer);

/// Why there is no bond; nothing where one may yet come of it.
[[nodiscard]] std::optional<Refusal> refusalOf(const std::optional<std::string>& error);

} // namespace wegslot::coupling
