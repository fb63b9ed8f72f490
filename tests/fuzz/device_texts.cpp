// Texts that a device says of itself: its name, local name, model and the reason it went. However
// they read, each line of the log stays one line of UTF-8 that no terminal obeys.

#include "base/text.h"
#include "base/virtual_time.h"
#include "log/log.h"
#include "scanner/scanner.h"
#include "stage/staged_central.h"
#include "tests/fuzz/expect.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

using namespace wegslot;

namespace {

class CheckingLog final : public LogDestination {
public:
    void write(std::string_view message) override {
        ++lines;
        expect(isUtf8(message));
        expect(printable(message) == message);
    }
    int lines = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CheckingLog log;
    LogDestination* const before = Log::setDestination(&log);
    {
        const std::string_view text(reinterpret_cast<const char*>(data), size);
        const std::string_view half = text.substr(0, size / 2);
        VirtualTime time{TimePoint{}};
        StagedCentral central;
        Scanner scanner{central, time, time};
        const Uuid id{};
        scanner.setWatchedIDs({id});
        central.advertise({.id = id, .rssi = -50, .peripheralName = half, .localName = text});
        central.connected(id);
        central.value(id, ModelIdentifier::modelCharacteristic, text, std::string(half));
        central.disconnected(id, std::string(text));
        expect(scanner.label(id).find('\n') == std::string::npos);
        expect(log.lines >= 3);
    }
    Log::setDestination(before);
    return 0;
}
