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

/// Collects the options of one line. Address and type only make sense together, so the address
/// is read when all words have been seen.
class DeviceLine {
public:
    /// What is wrong with the word, if anything.
    std::optional<std::string> take(std::string_view word) {
        const std::size_t equals = word.find('=');
        const std::string_view key = word.substr(0, equals);
        const std::string_view value =
            equals == std::string_view::npos ? "" : word.substr(equals + 1);
        if (key == "connectable" && equals == std::string_view::npos) return setConnectable();
        if (key == "address") return setAddress(value);
        if (key == "type") return setType(value);
        if (key == "rssi") return setRssi(value);
        if (key == "interval") return setInterval(value);
        if (key == "data") return setBytes(raw_, value);
        if (key == "manufacturer") return setBytes(manufacturer_, value);
        if (key == "name") return setName(value);
        return "unknown: " + std::string(word);
    }

    Instruction finish(std::string name) const {
        const std::optional<Address> address = parseAddress(address_, type_);
        if (!address) return Misunderstood{"no address=AA:BB:CC:DD:EE:FF"};
        PutDevice device{.name = std::move(name), .advertisement = {}, .interval = interval_};
        device.advertisement.address = *address;
        device.advertisement.type = reportType_;
        device.advertisement.rssi = rssi_;
        device.advertisement.data = data();
        if (device.advertisement.data.size() > mostData)
            return Misunderstood{"more than 31 bytes of data"};
        return device;
    }

private:
    using Complaint = std::optional<std::string>;

    static Complaint none() { return std::nullopt; }

    Complaint setConnectable() {
        reportType_ = ReportType::Connectable;
        return none();
    }

    Complaint setAddress(std::string_view value) {
        address_ = value;
        return none();
    }

    Complaint setType(std::string_view value) {
        if (value != "public" && value != "random") return "no type: " + std::string(value);
        type_ = value == "public" ? AddressType::Public : AddressType::Random;
        return none();
    }

    Complaint setRssi(std::string_view value) {
        const std::optional<int> rssi = parseRssiValue(value);
        if (!rssi) return "no signal strength: " + std::string(value);
        rssi_ = *rssi;
        return none();
    }

    Complaint setInterval(std::string_view value) {
        // The bounds that the radio's rules set for advertising.
        const std::optional<double> seconds = parseDecimal(value);
        if (!seconds || *seconds < 0.02 || *seconds > 10485.76)
            return "no interval: " + std::string(value);
        interval_ = *seconds;
        return none();
    }

    static Complaint setBytes(Bytes& target, std::string_view value) {
        const std::optional<Bytes> bytes = parseHex(value);
        if (!bytes) return "no hexadecimal bytes: " + std::string(value);
        target = *bytes;
        return none();
    }

    Complaint setName(std::string_view value) {
        const std::optional<std::string> plain = parseEscaped(value);
        if (!plain) return "no name: " + std::string(value);
        localName_.assign(plain->begin(), plain->end());
        return none();
    }

    /// A line that spells out its data gets that; otherwise a connectable device gets the flags
    /// that every real one sends.
    Bytes data() const {
        Bytes data = raw_;
        if (raw_.empty() && reportType_ == ReportType::Connectable) {
            appendStructure(data, Structure::Flags, Bytes{generalDiscoverableLowEnergyOnly});
        }
        if (!manufacturer_.empty()) appendStructure(data, Structure::Manufacturer, manufacturer_);
        if (!localName_.empty()) appendStructure(data, Structure::CompleteName, localName_);
        return data;
    }

    std::string_view address_;
    AddressType type_ = AddressType::Public;
    ReportType reportType_ = ReportType::NotConnectable;
    int rssi_ = -60;
    double interval_ = 0.3;
    Bytes raw_;
    Bytes manufacturer_;
    Bytes localName_;
};

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
