#include "flood.h"

#include <algorithm>
#include <cmath>

namespace controller {

namespace {

constexpr std::chrono::seconds pauseBeforeRepeating{2};
constexpr unsigned long repetitions = 2;

/// The two top bits of a random static address are ones.
Address addressOf(std::size_t device) {
    return Address{.bytes = {static_cast<std::uint8_t>(device & 0xFFU),
                             static_cast<std::uint8_t>((device >> 8U) & 0xFFU), 0x00, 0x0D, 0xF1,
                             0xC0},
                   .type = AddressType::Random};
}

/// Between -40 and -92 dBm. 53 is prime and no divisor of the steps, so that a device never
/// reports the same value twice running.
int rssiOf(std::size_t device, unsigned long round) {
    return -40 - static_cast<int>((device * 7 + round * 11) % 53);
}

/// Manufacturer data of the company that stands for tests, with the device's number.
Bytes dataOf(std::size_t device) {
    Bytes data{0x05, 0xFF, 0xFF, 0xFF};
    append16(data, static_cast<unsigned>(device & 0xFFFFU));
    return data;
}

} // namespace

Flood::Flood(const FloodPlan& plan, TimePoint start)
    : start_(start),
      rate_(plan.rate),
      planned_(static_cast<unsigned long>(std::lround(plan.rate * plan.seconds))),
      repeated_(std::min<unsigned long>(planned_, plan.devices)),
      total_(planned_ + repetitions * repeated_),
      due_(start),
      lastRssi_(plan.devices) {}

void Flood::advertiseIfDue(TimePoint now, Controller& controller) {
    while (!hasEnded() && due_ <= now) {
        advertise(next_, controller);
        ++next_;
        due_ = dueOf(next_);
    }
}

TimePoint Flood::dueOf(unsigned long number) const {
    // From the start each time: summed up, the rounding would make the flood drift.
    const TimePoint due = start_ + fromSeconds(static_cast<double>(number) / rate_);
    return due + pauseBeforeRepeating * repetitionOf(number);
}

unsigned long Flood::repetitionOf(unsigned long number) const {
    return number < planned_ ? 0 : (number - planned_) / repeated_ + 1;
}

/// The number whose device and strength a report has: its own, or that of the last report of the
/// device whose turn it is to repeat.
unsigned long Flood::contentOf(unsigned long number) const {
    return number - repetitionOf(number) * repeated_;
}

void Flood::advertise(unsigned long number, Controller& controller) {
    if (repetitionOf(number) > repetitionOf(number - std::min(number, 1UL)))
        controller.scan().forgetDelivered();
    const unsigned long content = contentOf(number);
    const std::size_t device = content % lastRssi_.size();
    const int rssi = rssiOf(device, content / lastRssi_.size());
    if (!controller.advertise(ReportType::NotConnectable, addressOf(device), dataOf(device), rssi))
        return;
    ++delivered_;
    lastRssi_[device] = rssi;
}

std::string Flood::summary() const {
    std::string text = "{\"reports\":" + std::to_string(delivered_) + ",\"devices\":{";
    const char* separator = "";
    for (std::size_t device = 0; device < lastRssi_.size(); ++device) {
        if (!lastRssi_[device]) continue;
        text += separator;
        text += '"' + toText(addressOf(device)) + "\":" + std::to_string(*lastRssi_[device]);
        separator = ",";
    }
    return text + "}}";
}

} // namespace controller
