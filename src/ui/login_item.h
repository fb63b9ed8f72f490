// The port through which the panel learns whether Wegslot starts at login, and changes that. Others
// may change it without telling, so it is asked each time it matters.
#pragma once

#include "base/result.h"

#include <optional>

namespace wegslot {

class LoginItem {
public:
    LoginItem() = default;
    LoginItem(const LoginItem&) = delete;
    LoginItem& operator=(const LoginItem&) = delete;
    virtual ~LoginItem() = default;

    [[nodiscard]] virtual bool isEnabled() const = 0;

    /// Nothing when it succeeded.
    [[nodiscard]] virtual std::optional<Failure> setEnabled(bool enabled) = 0;
};

} // namespace wegslot
