// The bytes of an advertisement: manufacturer data and a name.

#include "scanner/advertisement.h"
#include "scanner/device_names.h"
#include "tests/fuzz/expect.h"

#include <algorithm>
#include <cstdint>
#include <string>

using namespace wegslot;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span bytes(data, size);
    const std::string text(bytes.begin(), bytes.end());
    const Advertisement heard{.manufacturerData = bytes, .localName = text};

    const auto type = heard.continuityType();
    expect(type.has_value() == (size >= 3 && data[0] == 0x4C && data[1] == 0x00));
    expect(!type || *type == data[2]);
    expect(heard.name() == text);
    expect(!DeviceNames::symbol(text, std::nullopt).empty());
    expect(DeviceNames::friendly(text).size() <= std::max<std::size_t>(size, 11));
    return 0;
}
