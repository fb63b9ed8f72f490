#include "device_line.h"

#include <algorithm>

#include "text.h"

namespace controller {

namespace {

constexpr std::size_t mostData = 31;
constexpr unsigned generalDiscoverableLowEnergyOnly = 0x06;

enum class Structure : std::uint8_t { Flags = 0x01, CompleteName = 0x09, Manufacturer = 0xFF };

void appendStructure(Bytes& data, Structure type, ByteView content) {
    append8(data, static_cast<unsigned>(content.size() + 1));
    append8(data, static_cast<unsigned>(type));
    append(data, content);
}

using Complaint = std::optional<std::string>;

Complaint none() { return std::nullopt; }

/// Collects the options of one line. Address and type only make sense together, as do the parts
/// of the data, so these are put together when all words have been seen.
class DeviceLine {
public:
    /// What is wrong with the word, if anything.
    Complaint take(std::string_view word);

    Instruction finish(std::string name) const;

private:
    struct Option;
    struct Flag;

    /// For options that hold a value as it is read.
    template <auto member>
    Complaint setRssi(std::string_view value);
    template <auto member>
    Complaint setText(std::string_view value);
    template <auto member>
    Complaint setBytes(std::string_view value);

    Complaint setAddress(std::string_view value);
    Complaint setType(std::string_view value);
    Complaint setInterval(std::string_view value);
    Complaint setModel(std::string_view value);
    Complaint setBattery(std::string_view value);
    Complaint setMtu(std::string_view value);
    Complaint setResolvingKey(std::string_view value);
    Complaint setAddressInterval(std::string_view value);
    Complaint setPairs(std::string_view value);
    Complaint setOwner(std::string_view value);

    bool isConnectable() const { return made_.advertisement.type == ReportType::Connectable; }

    Bytes data() const;

    DeviceDescription made_;
    std::string_view address_;
    AddressType type_ = AddressType::Public;
    int rssi_ = Advertisement{}.rssi;
    std::optional<int> linkRssi_;
    Bytes raw_;
    Bytes manufacturer_;
    std::string localName_;
    std::string accessName_;
};

struct DeviceLine::Option {
    std::string_view key;
    Complaint (DeviceLine::*set)(std::string_view);
};

struct DeviceLine::Flag {
    std::string_view word;
    void (*set)(DeviceDescription&);
};

Complaint DeviceLine::take(std::string_view word) {
    static constexpr Option options[] = {
        {"address", &DeviceLine::setAddress},
        {"type", &DeviceLine::setType},
        {"rssi", &DeviceLine::setRssi<&DeviceLine::rssi_>},
        {"interval", &DeviceLine::setInterval},
        {"data", &DeviceLine::setBytes<&DeviceLine::raw_>},
        {"manufacturer", &DeviceLine::setBytes<&DeviceLine::manufacturer_>},
        {"name", &DeviceLine::setText<&DeviceLine::localName_>},
        {"link-rssi", &DeviceLine::setRssi<&DeviceLine::linkRssi_>},
        {"gap-name", &DeviceLine::setText<&DeviceLine::accessName_>},
        {"model", &DeviceLine::setModel},
        {"battery", &DeviceLine::setBattery},
        {"mtu", &DeviceLine::setMtu},
        {"irk", &DeviceLine::setResolvingKey},
        {"changes-every", &DeviceLine::setAddressInterval},
        {"pairs", &DeviceLine::setPairs},
        {"owner", &DeviceLine::setOwner},
    };
    static constexpr Flag flags[] = {
        {"connectable",
         [](DeviceDescription& made) { made.advertisement.type = ReportType::Connectable; }},
        {"advertises-while-linked",
         [](DeviceDescription& made) { made.advertisesWhileLinked = true; }},
        {"mute", [](DeviceDescription& made) { made.isMute = true; }},
        {"unpairable", [](DeviceDescription& made) { made.pairability = Pairability::Refuses; }},
        {"mouse", [](DeviceDescription& made) { made.profile.isMouse = true; }},
        {"silent", [](DeviceDescription& made) { made.startsSilent = true; }},
        {"keeps-identity", [](DeviceDescription& made) { made.keepsIdentity = true; }},
        {"asks-always", [](DeviceDescription& made) { made.central.pairing.asksAlways = true; }},
        {"older-pairing", [](DeviceDescription& made) { made.central.pairing.isOlder = true; }},
        {"changing", [](DeviceDescription& made) { made.privacy = Changing{}; }},
    };
    for (const Flag& flag : flags) {
        if (flag.word != word) continue;
        flag.set(made_);
        return none();
    }
    const std::size_t equals = word.find('=');
    for (const Option& option : options) {
        if (equals == std::string_view::npos || option.key != word.substr(0, equals)) continue;
        return (this->*option.set)(word.substr(equals + 1));
    }
    return "unknown: " + std::string(word);
}

Instruction DeviceLine::finish(std::string name) const {
    const std::optional<Address> address = parseAddress(address_, type_);
    if (!address) return Misunderstood{"no address=AA:BB:CC:DD:EE:FF"};
    PutDevice device{.name = std::move(name), .description = made_};
    device.description.advertisement.address = *address;
    device.description.advertisement.rssi = rssi_;
    device.description.advertisement.data = data();
    device.description.linkRssi = linkRssi_;
    device.description.profile.name = accessName_.empty() ? localName_ : accessName_;
    if (device.description.advertisement.data.size() > mostData)
        return Misunderstood{"more than 31 bytes of data"};
    if (made_.addressInterval && std::holds_alternative<std::monostate>(made_.privacy))
        return Misunderstood{"changes-every= without irk= or changing"};
    return device;
}

template <auto member>
Complaint DeviceLine::setRssi(std::string_view value) {
    const std::optional<int> rssi = parseRssiValue(value);
    if (!rssi) return "no signal strength: " + std::string(value);
    this->*member = *rssi;
    return none();
}

template <auto member>
Complaint DeviceLine::setText(std::string_view value) {
    const std::optional<std::string> plain = parseEscaped(value);
    if (!plain) return "no text: " + std::string(value);
    this->*member = *plain;
    return none();
}

template <auto member>
Complaint DeviceLine::setBytes(std::string_view value) {
    const std::optional<Bytes> bytes = parseHex(value);
    if (!bytes) return "no hexadecimal bytes: " + std::string(value);
    this->*member = *bytes;
    return none();
}

Complaint DeviceLine::setAddress(std::string_view value) {
    address_ = value;
    return none();
}

Complaint DeviceLine::setType(std::string_view value) {
    if (value != "public" && value != "random") return "no type: " + std::string(value);
    type_ = value == "public" ? AddressType::Public : AddressType::Random;
    return none();
}

Complaint DeviceLine::setInterval(std::string_view value) {
    // The bounds that the radio's rules set for advertising.
    const std::optional<double> seconds = parseDecimal(value);
    if (!seconds || *seconds < 0.02 || *seconds > 10485.76)
        return "no interval: " + std::string(value);
    made_.interval = *seconds;
    return none();
}

Complaint DeviceLine::setModel(std::string_view value) {
    const std::optional<std::string> plain = parseEscaped(value);
    if (!plain) return "no text: " + std::string(value);
    made_.profile.model = *plain;
    return none();
}

Complaint DeviceLine::setBattery(std::string_view value) {
    if (value != "open" && value != "protected") return "no battery: " + std::string(value);
    made_.profile.battery = value == "open" ? Battery::Open : Battery::Protected;
    return none();
}

Complaint DeviceLine::setMtu(std::string_view value) {
    // The least that there is, and the most that a packet's length can say of one value.
    const std::optional<int> bytes = parseInteger(value);
    if (!bytes || *bytes < 23 || *bytes > 517) return "no mtu: " + std::string(value);
    made_.profile.mtu = static_cast<unsigned>(*bytes);
    return none();
}

Complaint DeviceLine::setResolvingKey(std::string_view value) {
    Resolvable privacy;
    const std::optional<Bytes> bytes = parseHex(value);
    if (!bytes || bytes->size() != privacy.key.size()) return "no key: " + std::string(value);
    std::copy(bytes->begin(), bytes->end(), privacy.key.begin());
    made_.privacy = privacy;
    return none();
}

Complaint DeviceLine::setAddressInterval(std::string_view value) {
    const std::optional<double> seconds = parseDecimal(value);
    if (!seconds || *seconds <= 0 || *seconds > 86400) return "no interval: " + std::string(value);
    made_.addressInterval = *seconds;
    return none();
}

Complaint DeviceLine::setPairs(std::string_view value) {
    using Pairs = CentralHabits::Pairs;
    if (value != "when-refused" && value != "at-once" && value != "when-asked")
        return "no time to pair: " + std::string(value);
    made_.central.pairs = value == "at-once"      ? Pairs::AtOnce
                          : value == "when-asked" ? Pairs::WhenAsked
                                                  : Pairs::WhenRefused;
    return none();
}

Complaint DeviceLine::setOwner(std::string_view value) {
    if (value != "types" && value != "answers" && value != "nothing")
        return "no owner: " + std::string(value);
    made_.central.pairing.owner = value == "types"     ? OwnerAbility::Types
                                  : value == "answers" ? OwnerAbility::Answers
                                                       : OwnerAbility::Nothing;
    return none();
}

/// A line that spells out its data gets that; otherwise a connectable device gets the flags
/// that every real one sends.
Bytes DeviceLine::data() const {
    Bytes data = raw_;
    if (raw_.empty() && isConnectable())
        appendStructure(data, Structure::Flags, Bytes{generalDiscoverableLowEnergyOnly});
    if (!manufacturer_.empty()) appendStructure(data, Structure::Manufacturer, manufacturer_);
    if (!localName_.empty())
        appendStructure(data, Structure::CompleteName, Bytes(localName_.begin(), localName_.end()));
    return data;
}

} // namespace

Instruction parseDevice(const std::vector<std::string_view>& words) {
    if (words.size() < 3)
        return Misunderstood{"expected: device NAME address=AA:BB:CC:DD:EE:FF ..."};
    DeviceLine line;
    for (std::size_t at = 2; at < words.size(); ++at) {
        if (const std::optional<std::string> wrong = line.take(words[at]))
            return Misunderstood{*wrong};
    }
    return line.finish(std::string(words[1]));
}

std::optional<int> parseRssiValue(std::string_view text) {
    const std::optional<int> value = parseInteger(text);
    if (!value) return std::nullopt;
    const bool isStrength = *value >= -127 && *value <= 20;
    return isStrength || *value == 127 ? value : std::nullopt;
}

} // namespace controller
