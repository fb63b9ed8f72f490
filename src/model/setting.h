// One choice of the user: an observable that knows its name, its default, and how a store holds it.
// Settings are made by `Settings`, which lists them.
#pragma once

#include "base/observable.h"
#include "base/time.h"
#include "model/key_device.h"
#include "model/key_rows.h"
#include "model/lock_rule.h"
#include "model/preferences_store.h"

#include <optional>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace wegslot {

// A value as a store holds it; nothing for what none can hold.

[[nodiscard]] std::optional<PreferenceValue> stored(bool value);
[[nodiscard]] std::optional<PreferenceValue> stored(double value);
[[nodiscard]] std::optional<PreferenceValue> stored(Seconds value);
[[nodiscard]] std::optional<PreferenceValue> stored(LockRule rule);
/// Nothing for a list with a threshold that is no number.
[[nodiscard]] std::optional<PreferenceValue> stored(const std::vector<KeyDevice>& keys);

[[nodiscard]] std::optional<PreferenceValue> stored(const KeyRows& rows);

/// What a stored value means; nothing when it is of another kind, or means nothing.
template <typename T>
[[nodiscard]] std::optional<T> meaning(const PreferenceValue& value);
template <>
std::optional<bool> meaning(const PreferenceValue& value);
template <>
std::optional<double> meaning(const PreferenceValue& value);
template <>
std::optional<Seconds> meaning(const PreferenceValue& value);
template <>
std::optional<LockRule> meaning(const PreferenceValue& value);
template <>
std::optional<std::vector<KeyDevice>> meaning(const PreferenceValue& value);
template <>
std::optional<KeyRows> meaning(const PreferenceValue& value);

/// What `store` has under `name`, of the same kind as `like`.
[[nodiscard]] PreferenceValue read(const PreferencesStore& store, std::string_view name,
                                   const PreferenceValue& like);

template <typename T>
class Setting;

/// A setting of any kind there is.
using AnySetting =
    std::variant<Setting<bool>*, Setting<double>*, Setting<Seconds>*, Setting<LockRule>*,
                 Setting<std::vector<KeyDevice>>*, Setting<KeyRows>*>;

/// All settings over one store, in the order in which they were made.
struct SettingsList {
    PreferencesStore& store;
    std::vector<AnySetting> all{};
};

template <typename T>
class Setting {
public:
    /// Joins `list`, which must outlive it, and has its default until it is read.
    Setting(SettingsList& list, std::string_view name, T byDefault)
        : store_(list.store),
          name_(name),
          default_(std::move(byDefault)),
          value_(default_) {
        list.all.emplace_back(this);
    }

    [[nodiscard]] std::string_view name() const { return name_; }

    [[nodiscard]] const T& get() const { return value_.get(); }

    /// Written after it is stored and told.
    void set(T value) {
        value_.set(std::move(value));
        if (auto written = stored(value_.get())) store_.write(name_, *std::move(written));
    }

    /// Sets what a stored value means; what means nothing stands for the default.
    void assign(const PreferenceValue& value) { set(meaning<T>(value).value_or(default_)); }

    [[nodiscard]] bool understands(const PreferenceValue& value) const {
        return meaning<T>(value).has_value();
    }

    /// As it is registered in the store; shows too of what kind its values are.
    [[nodiscard]] PreferenceValue byDefault() const { return *stored(default_); }

    /// Takes over what the store says by now, if that is something else.
    void reread() {
        T now = meaning<T>(read(store_, name_, byDefault())).value_or(default_);
        if (now != value_.get()) value_.set(std::move(now));
    }

    [[nodiscard]] Subscription onChange(typename Observable<T>::Listener listener) const {
        return value_.onChange(std::move(listener));
    }

    [[nodiscard]] Subscription follow(typename Observable<T>::Listener listener) const {
        return value_.follow(std::move(listener));
    }

private:
    PreferencesStore& store_;
    std::string_view name_;
    T default_;
    Observable<T> value_;
};

} // namespace wegslot
