// The bytes of a model number, as a device answers them.

#include "base/text.h"
#include "tests/fuzz/expect.h"

#include <cstdint>
#include <string>

using namespace wegslot;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    const auto kept = trimmed(text);
    expect(trimmed(kept) == kept);
    expect(text.find(kept) != std::string::npos);
    expect(isUtf8(printable(text)));
    expect(printable(text).find('\n') == std::string::npos);
    if (isUtf8(text)) expect(isUtf8(kept));
    return 0;
}
