// The answer of an operation that can fail in a way somebody must be told about: a value, or a
// message that says what and where.
#pragma once

#include "base/translation.h"

#include <utility>
#include <variant>

namespace wegslot {

struct Failure {
    Message message;
    friend bool operator==(const Failure&, const Failure&) = default;
};

template <typename T>
class [[nodiscard]] Result {
public:
    Result(T value) : content_(std::move(value)) {} // NOLINT: meant to convert

    Result(Failure failure) : content_(std::move(failure)) {} // NOLINT: meant to convert

    [[nodiscard]] explicit operator bool() const { return std::holds_alternative<T>(content_); }

    /// Only of a success.
    [[nodiscard]] T& operator*() & { return std::get<T>(content_); }
    [[nodiscard]] const T& operator*() const& { return std::get<T>(content_); }
    [[nodiscard]] T&& operator*() && { return std::get<T>(std::move(content_)); }

    [[nodiscard]] T* operator->() { return &std::get<T>(content_); }

    [[nodiscard]] const T* operator->() const { return &std::get<T>(content_); }

    /// Only of a failure.
    [[nodiscard]] const Failure& failure() const { return std::get<Failure>(content_); }

private:
    std::variant<T, Failure> content_;
};

} // namespace wegslot
