// The port to the user's preferences: typed values under fixed names, over a layer of registered
// defaults. Writes are not checked; reading a value of another type gives the default.
#pragma once

#include "base/handle.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace wegslot {

/// Encoded data, as opposed to a text for people: a JSON list or object.
struct Data {
    std::string bytes;
    friend bool operator==(const Data&, const Data&) = default;
};

using PreferenceValue = std::variant<bool, double, std::string, Data>;
using Preferences = std::map<std::string, PreferenceValue, std::less<>>;

class PreferencesStore {
public:
    PreferencesStore() = default;
    PreferencesStore(const PreferencesStore&) = delete;
    PreferencesStore& operator=(const PreferencesStore&) = delete;
    virtual ~PreferencesStore() = default;

    /// What a name that was never written reads as.
    virtual void registerDefaults(Preferences defaults) = 0;

    /// False when there is neither a value nor a default.
    [[nodiscard]] virtual bool boolean(std::string_view name) const = 0;
    /// 0 when there is neither.
    [[nodiscard]] virtual double number(std::string_view name) const = 0;
    [[nodiscard]] virtual std::optional<std::string> text(std::string_view name) const = 0;
    [[nodiscard]] virtual std::optional<Data> data(std::string_view name) const = 0;

    virtual void write(std::string_view name, PreferenceValue value) = 0;

    /// Tells `listener` when values have changed that were not written here.
    [[nodiscard]] virtual Subscription onChangeByOthers(std::function<void()> listener) = 0;
};

/// What every store does once it has the values at hand: look a name up, fall back to the
/// registered default, check the type. Serves as it is where nothing needs to be kept.
class MemoryStore : public PreferencesStore {
public:
    MemoryStore() = default;

    explicit MemoryStore(Preferences values) : values_(std::move(values)) {}

    void registerDefaults(Preferences defaults) override { defaults_ = std::move(defaults); }

    [[nodiscard]] bool boolean(std::string_view name) const override;
    [[nodiscard]] double number(std::string_view name) const override;
    [[nodiscard]] std::optional<std::string> text(std::string_view name) const override;
    [[nodiscard]] std::optional<Data> data(std::string_view name) const override;
    void write(std::string_view name, PreferenceValue value) override;

    /// Never: nobody else knows the values.
    [[nodiscard]] Subscription onChangeByOthers(std::function<void()> /*listener*/) override {
        return {};
    }

    [[nodiscard]] const Preferences& values() const { return values_; }
    [[nodiscard]] const Preferences& defaults() const { return defaults_; }

protected:
    void replace(Preferences values) { values_ = std::move(values); }

private:
    template <typename T>
    [[nodiscard]] std::optional<T> find(std::string_view name) const;

    Preferences defaults_;
    Preferences values_;
};

} // namespace wegslot
