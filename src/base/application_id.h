// The name by which desktops know Wegslot: of its desktop entry, its icon and its place on the
// session bus. The files of packaging/ are called by it too.
#pragma once

namespace wegslot {

inline constexpr auto applicationId = "nl.wegslot.Wegslot";

} // namespace wegslot
