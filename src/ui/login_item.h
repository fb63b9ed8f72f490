// The port through which the panel learns whether Wegslot starts when the user logs in, and changes
// that. Whoever else may change it does not tell: it is asked whenever it matters.
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
