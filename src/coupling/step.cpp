#include "coupling/step.h"

namespace wegslot::coupling {

std::optional<Kind> kindNamed(std::string_view name) {
    if (name == "iphone") return Kind::iphone;
    if (name == "android") return Kind::android;
    if (name == "watch") return Kind::watch;
    return std::nullopt;
}

} // namespace wegslot::coupling
