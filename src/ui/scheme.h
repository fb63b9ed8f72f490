// Whether the desktop is light or dark.
#pragma once

namespace wegslot {

enum class Scheme { light, dark };

} // namespace wegslot
