#include "trace/disguise.h"

#include "model/key_codec.h"
#include "model/settings.h"
#include "scanner/model_identifier.h"

#include <algorithm>
#include <type_traits>
#include <utility>
#include <vector>

namespace wegslot {

using namespace trace;

namespace {

bool isHexadecimal(char character) {
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'f') ||
           (character >= 'A' && character <= 'F');
}

/// Four digits with something between them, as addresses and ids have.
bool hasAddress(std::string_view text) {
    for (std::size_t i = 0; i + 4 < text.size(); ++i) {
        const bool separated = text[i + 2] == ':' || text[i + 2] == '_' || text[i + 2] == '-';
        if (separated && isHexadecimal(text[i]) && isHexadecimal(text[i + 1]) &&
            isHexadecimal(text[i + 3]) && isHexadecimal(text[i + 4]))
            return true;
    }
    return false;
}

} // namespace

// What becomes of the fields of an event. A type that is not named here cannot be one.
struct Disguise::Mask {
    Disguise& disguise;
    Uuid device{};             ///< whom the event is about, really
    GattUuid characteristic{}; ///< what the next content is of

    Mask& operator()(std::string_view /*name*/, auto& value) {
        hide(value);
        return *this;
    }
    Mask& either(std::string_view name, auto& value, std::string_view other, auto& otherwise) {
        return (*this)(name, value)(other, otherwise);
    }
    Mask& always(std::string_view /*name*/, GattUuid /*value*/) { return *this; }
    void operator()(auto& whole) { hide(whole); }

    template <typename T>
    void hide(std::optional<T>& value) {
        if (value) hide(*value);
    }

    void hide(Uuid& id) {
        device = id;
        id = disguise.id(id);
    }
    void hide(DeviceName& name) const { disguise.name(device, name); }
    void hide(Reason& reason) const {
        if (disguise.tells(reason)) reason = "onbekende reden";
    }
    void hide(ApplicationName& user) const {
        if (user.empty()) return;
        auto& numbers = disguise.applications_;
        const auto number = numbers.try_emplace(user, numbers.size() + 1).first->second;
        user = "App " + std::to_string(number);
    }
    void hide(MakersData& data) const {
        // The maker and the type of its first message are all that is judged; the rest may name
        // the device as well as an address does.
        const bool hasType = data.size() > 2 && data[0] == 0x4C && data[1] == 0x00;
        data.resize(std::min<std::size_t>(data.size(), hasType ? 3 : 2));
    }
    void hide(GattUuid& read) { characteristic = read; }
    void hide(std::optional<Content>& content) {
        // Any other is not read, and might be the name itself.
        if (characteristic != ModelIdentifier::modelCharacteristic) content.reset();
    }
    void hide(Preferences& values) const {
        const auto found = values.find(Settings::specimen().keys.name());
        if (found == values.end()) return;
        auto keys =
            decodeKeys(std::get<Data>(found->second).bytes).value_or(std::vector<KeyDevice>{});
        for (KeyDevice& key : keys) {
            disguise.name(key.id, key.name);
            key.id = disguise.id(key.id);
        }
        found->second = Data{encodeKeys(keys).value_or("[]")};
    }

    // These tell nothing of anybody.
    void hide(bool&) const {}
    void hide(int&) const {}
    void hide(Dbm&) const {}
    void hide(TimePoint&) const {}
    void hide(UserAction&) const {}
    void hide(std::vector<GattUuid>&) const {}
    template <typename T>
    requires std::is_enum_v<T>
    void hide(T&) const {}
};

trace::Event Disguise::disguised(trace::Event event) {
    if (const auto* const same = std::get_if<trace::Identity>(&event)) {
        // Both are one device from here on, and have one name.
        if (const auto from = devices_.find(same->from); from != devices_.end())
            devices_.try_emplace(same->to, from->second);
    }
    std::visit(
        [this](auto& told) {
            Mask mask{*this};
            told.fields(told, mask);
        },
        event);
    return event;
}

Uuid Disguise::id(const Uuid& real) {
    const auto found = ids_.find(real);
    return found != ids_.end() ? found->second : ids_.emplace(real, freshId_()).first->second;
}

void Disguise::name(const Uuid& real, std::string& name) {
    if (name.empty()) return;
    names_.insert(name);
    const auto [device, isNew] = devices_.try_emplace(real, lastDevice_ + 1);
    if (isNew) ++lastDevice_;
    name = "Apparaat " + std::to_string(device->second);
}

bool Disguise::tells(std::string_view text) const {
    return hasAddress(text) || std::ranges::any_of(names_, [text](const std::string& name) {
               return text.find(name) != std::string_view::npos;
           });
}

} // namespace wegslot
