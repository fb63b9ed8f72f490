// Whether somebody blends the windows on this screen.
#pragma once

namespace wegslot {

/// Whether windows may be translucent: without a compositor what is see-through would be black.
/// Asks the X server; true where there is none.
[[nodiscard]] bool blendsWindows();

} // namespace wegslot
