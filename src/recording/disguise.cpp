#include "recording/disguise.h"

#include "model/key_codec.h"
#include "scanner/model_identifier.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace wegslot {
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

// What becomes of each event.
struct Disguise::Mask {
    Disguise& disguise;

    void operator()(trace::SettingsChange& event) const {
        const auto found = event.values.find("keys");
        if (found == event.values.end()) return;
        auto keys =
            decodeKeys(std::get<Data>(found->second).bytes).value_or(std::vector<KeyDevice>{});
        for (KeyDevice& key : keys) {
            disguise.name(key.id, key.name);
            key.id = disguise.id(key.id);
        }
        found->second = Data{encodeKeys(keys).value_or("[]")};
    }

    void operator()(trace::Known& event) const {
        disguise.name(event.id, event.name);
        event.id = disguise.id(event.id);
    }

    void operator()(trace::Heard& event) const {
        disguise.name(event.id, event.name);
        disguise.name(event.id, event.localName);
        event.id = disguise.id(event.id);
        if (!event.manufacturerData) return;
        // The maker and the type of its first message are all that is judged; the rest may name
        // the device as well as an address does.
        auto& data = *event.manufacturerData;
        const bool hasType = data.size() > 2 && data[0] == 0x4C && data[1] == 0x00;
        data.resize(std::min<std::size_t>(data.size(), hasType ? 3 : 2));
    }

    void operator()(trace::Disconnected& event) const {
        event.id = disguise.id(event.id);
        if (event.error && disguise.tells(*event.error)) event.error = "onbekende reden";
    }

    void operator()(trace::Value& event) const {
        // Any other is not read, and might be the name itself.
        if (event.characteristic != ModelIdentifier::modelCharacteristic) event.value.reset();
        disguise.name(event.id, event.name);
        event.id = disguise.id(event.id);
    }

    void operator()(trace::Microphone& event) const {
        if (!event.user || event.user->empty()) return;
        auto& numbers = disguise.applications_;
        const auto number = numbers.try_emplace(*event.user, numbers.size() + 1).first->second;
        event.user = "App " + std::to_string(number);
    }

    void operator()(trace::Identity& event) const {
        auto& numbers = disguise.devices_;
        // Both are one device from here on, and have one name.
        if (const auto from = numbers.find(event.from); from != numbers.end())
            numbers.try_emplace(event.to, from->second);
        event.from = disguise.id(event.from);
        event.to = disguise.id(event.to);
    }

    void operator()(auto& event) const {
        if constexpr (requires { event.id; }) event.id = disguise.id(event.id);
    }
};

trace::Event Disguise::disguised(trace::Event event) {
    std::visit(Mask{*this}, event);
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

void Disguise::name(const Uuid& real, std::optional<std::string>& name) {
    if (name) this->name(real, *name);
}

bool Disguise::tells(std::string_view text) const {
    return hasAddress(text) || std::ranges::any_of(names_, [text](const std::string& name) {
               return text.find(name) != std::string_view::npos;
           });
}

} // namespace wegslot
