#include "trace/writer.h"

#include "base/text.h"
#include "model/settings.h"
#include "trace/json_tree.h"
#include "trace/words.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>
#include <utility>

namespace wegslot {
namespace {

using namespace trace;

std::string hexadecimal(std::uint32_t value, int digits) {
    constexpr std::string_view all = "0123456789ABCDEF";
    std::string text;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        text += all[(value >> static_cast<unsigned>(shift)) & 0xFU];
    return text;
}

std::string text(const Uuid& id) { return jsonString(id.text()); }

std::string text(GattUuid uuid) {
    const auto value = static_cast<std::uint32_t>(uuid);
    return jsonString(hexadecimal(value, value > 0xFFFFU ? 8 : 4));
}

std::string inHexadecimal(const auto& bytes) {
    std::string digits;
    for (const auto byte : bytes)
        digits += hexadecimal(static_cast<std::uint8_t>(byte), 2);
    return jsonString(digits);
}

std::string text(const MakersData& data) { return inHexadecimal(data); }

std::string text(const Content& content) { return inHexadecimal(content); }

std::string text(bool value) { return value ? "true" : "false"; }

std::string text(int value) { return std::to_string(value); }

std::string text(const std::vector<GattUuid>& list) {
    std::string entries;
    for (const GattUuid entry : list)
        entries += (entries.empty() ? "" : ",") + text(entry);
    return "[" + entries + "]";
}

std::string text(double number) {
    constexpr double largest = std::numeric_limits<double>::max();
    return decimal(std::isnan(number) ? 0 : std::clamp(number, -largest, largest));
}

std::string text(Dbm strength) { return text(strength.value); }

template <Tells tells>
std::string text(const Text<tells>& words) {
    return jsonString(words);
}

template <typename T>
requires std::is_enum_v<T> std::string text(T chosen) {
    return jsonString(std::ranges::find(words<T>, chosen, &Word<T>::second)->first);
}

std::string text(TimePoint instant) {
    // "2026-11-15 23:50:00 +0000" in the words of a trace.
    std::string words = utcText(instant).substr(0, 19) + "Z";
    words[10] = 'T';
    return jsonString(words);
}

std::string text(const PreferenceValue& value) {
    if (const bool* const chosen = std::get_if<bool>(&value)) return text(*chosen);
    if (const double* const number = std::get_if<double>(&value)) return text(*number);
    if (const auto* const data = std::get_if<Data>(&value)) return data->bytes;
    return jsonString(std::get<std::string>(value));
}

/// Puts the fields of an event together as its value.
class Put {
public:
    Put& operator()(std::string_view name, const auto& value) { return add(name, text(value)); }

    template <typename T>
    Put& operator()(std::string_view name, const std::optional<T>& value) {
        return value ? add(name, text(*value)) : *this;
    }

    Put& operator()(std::string_view name, const std::vector<GattUuid>& list) {
        return list.empty() ? *this : add(name, text(list));
    }

    Put& either(std::string_view name, const auto& value, std::string_view other,
                const auto& otherwise) {
        return (*this)(name, value)(other, otherwise);
    }

    Put& always(std::string_view name, GattUuid value) { return add(name, text(value)); }

    void operator()(const auto& whole) { whole_ = text(whole); }

    template <typename T>
    void operator()(const std::optional<T>& whole) {
        whole_ = whole ? text(*whole) : "null";
    }

    void operator()(const UserAction& asked) {
        if (const auto* const pause = std::get_if<action::Pause>(&asked))
            add("pause", text(pause->duration.count()));
        for (const auto& [word, action] : words<UserAction>)
            if (action.index() == asked.index()) whole_ = jsonString(word);
    }

    void operator()(const Preferences& values) {
        members_ = "{";
        Settings::specimen().visit([&](const auto& setting) {
            const auto found = values.find(setting.name());
            if (found != values.end()) add(setting.name(), text(found->second));
        });
    }

    Put& add(std::string_view name, std::string_view json) {
        members_ += members_.size() > 1 ? "," : members_.empty() ? "{" : "";
        members_ += jsonString(name) + ":";
        members_ += json;
        return *this;
    }

    [[nodiscard]] std::string value() const {
        if (!members_.empty()) return members_ + "}";
        return whole_.empty() ? text(true) : whole_;
    }

private:
    std::string members_; ///< with what opens them, as soon as there may be any
    std::string whole_;
};

// In whole milliseconds without going through a double, as it is read.
std::string seconds(Nanoseconds time) {
    const auto milliseconds = time / std::chrono::milliseconds{1};
    std::string text = std::to_string(milliseconds / 1000);
    if (const auto fraction = milliseconds % 1000; fraction != 0) {
        text += "." + std::to_string(1000 + fraction).substr(1);
        text.erase(text.find_last_not_of('0') + 1);
    }
    return text;
}

Put& addEvent(Put& object, const Event& event) {
    return std::visit(
        [&object](const auto& kind) -> Put& {
            Put fields;
            kind.fields(kind, fields);
            return object.add(kind.word, fields.value());
        },
        event);
}

} // namespace

std::string written(const trace::Line& line) {
    Put whole;
    whole.add("t", seconds(line.time));
    return addEvent(whole, line.event).value() + "\n";
}

std::string written(const trace::Event& event) {
    Put whole;
    return addEvent(whole, event).value();
}

} // namespace wegslot
