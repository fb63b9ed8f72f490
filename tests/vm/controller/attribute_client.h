// Asks, on the attribute channel, what a phone asks of a heart rate monitor that it has connected
// to: which services there are, what is in that of the heart rate, and where the sensor is worn.
// The last may be refused until the link is encrypted, and is asked again then.
#pragma once

#include <optional>
#include <vector>

#include "attribute_table.h"

namespace controller {

class AttributeClient {
public:
    /// The longest packet that it offers to take.
    explicit AttributeClient(unsigned mtu) : offeredMtu_(mtu) {}

    /// The first question.
    Bytes start();

    /// The next question, if this answer leads to one.
    std::optional<Bytes> receive(ByteView answer);

    /// What was refused before, unless something else is asked just now.
    std::optional<Bytes> askAgain();

    bool hasStarted() const { return hasStarted_; }

    /// Nothing is waited for any more; what was seen stays.
    void unlinked() {
        hasStarted_ = false;
        step_ = Step::None;
    }

    /// The 16-bit numbers of the services seen.
    const std::vector<std::uint16_t>& services() const { return services_; }

    /// The value was refused as it is open to encrypted links only.
    bool isRefused() const { return isRefused_; }

    const std::optional<Bytes>& sensorLocation() const { return sensorLocation_; }

    /// Whether these bytes answer a question, or ask nothing.
    static bool isForClient(ByteView bytes);

private:
    enum class Step : std::uint8_t { None, Mtu, Services, Characteristics, Value };

    Bytes askForServices(unsigned first);
    Bytes askForCharacteristics(unsigned first);
    std::optional<Bytes> takeServices(ByteView answer);
    std::optional<Bytes> takeCharacteristics(ByteView answer);
    std::optional<Bytes> readValue();
    std::optional<Bytes> takeError(ByteView answer);

    unsigned offeredMtu_;
    bool hasStarted_ = false;
    Step step_ = Step::None;
    std::vector<std::uint16_t> services_;
    /// Of the heart rate; empty where there is none.
    HandleRange heartRate_;
    AttributeHandle value_ = 0;
    bool isRefused_ = false;
    std::optional<Bytes> sensorLocation_;
};

} // namespace controller
