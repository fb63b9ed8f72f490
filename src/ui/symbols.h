// The names of the pictures that the interface draws. Each is a file `icons/NAME.svg`; the toolkit
// turns it into pixels.
#pragma once

#include <array>
#include <string_view>

namespace wegslot::symbols {

// What the system is doing.
inline constexpr std::string_view lock = "lock.fill";
inline constexpr std::string_view openLock = "lock.open";
inline constexpr std::string_view slashedLock = "lock.slash";
inline constexpr std::string_view lockInTrouble = "exclamationmark.lock";
inline constexpr std::string_view pause = "pause.circle";
inline constexpr std::string_view walking = "figure.walk";
inline constexpr std::string_view hourglass = "hourglass";

// Devices, as DeviceNames::symbol gives them.
inline constexpr std::string_view watch = "applewatch";
inline constexpr std::string_view phone = "iphone";
inline constexpr std::string_view tablet = "ipad";
inline constexpr std::string_view laptop = "laptopcomputer";
inline constexpr std::string_view radio = "dot.radiowaves.left.and.right";

// Buttons and banners.
inline constexpr std::string_view update = "arrow.down.circle.fill";
inline constexpr std::string_view warning = "exclamationmark.triangle.fill";
inline constexpr std::string_view log = "doc.text.magnifyingglass";
inline constexpr std::string_view remove = "xmark.circle.fill";

inline constexpr std::array all{lock,      openLock, slashedLock, lockInTrouble, pause,  walking,
                                hourglass, watch,    phone,       tablet,        laptop, radio,
                                update,    warning,  log,         remove};

} // namespace wegslot::symbols
