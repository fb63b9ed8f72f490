// A value that tells its listeners of every assignment. Listeners run before the value is
// stored and are handed the new one; an equal value notifies too. A listener may end any
// subscription, its own included, and subscriptions may outlive the observable.
#pragma once

#include "base/handle.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace wegslot {

template <typename T>
class Observable {
public:
    using Listener = std::function<void(const T&)>;

    Observable() = default;

    explicit Observable(T value) : value_(std::move(value)) {}

    Observable(const Observable&) = delete;
    Observable& operator=(const Observable&) = delete;

    [[nodiscard]] const T& get() const { return value_; }

    void set(T value) {
        const auto listeners = *listeners_; // listeners may come and go while these are told
        for (const auto& entry : listeners)
            if (entry->active) entry->listener(value);
        value_ = std::move(value);
    }

    /// Tells `listener` of every later assignment, in the order of subscribing.
    [[nodiscard]] Subscription onChange(Listener listener) const {
        const auto entry = std::make_shared<Entry>(Entry{std::move(listener)});
        listeners_->push_back(entry);
        return Subscription{[list = std::weak_ptr(listeners_), entry] {
            // Marked as well as removed: a running `set` holds a copy of the list, and the
            // listener that runs in it may be the one that ends.
            entry->active = false;
            if (const auto alive = list.lock()) std::erase(*alive, entry);
        }};
    }

    /// As `onChange`, and also delivers the current value before returning.
    [[nodiscard]] Subscription follow(Listener listener) const {
        listener(value_);
        return onChange(std::move(listener));
    }

private:
    struct Entry {
        Listener listener;
        bool active = true;
    };

    using List = std::vector<std::shared_ptr<Entry>>;

    T value_{};
    std::shared_ptr<List> listeners_ = std::make_shared<List>();
};

} // namespace wegslot
