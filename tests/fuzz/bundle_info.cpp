// What an application says of itself, and build numbers. A number that is read is written again
// without its sign and zeros.

#include "update/bundle_info.h"
#include "tests/fuzz/expect.h"

#include <cstdint>

using namespace wegslot;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    static_cast<void>(readBundleInfo(text));
    const auto number = buildNumber(text);
    if (!number) return 0;
    expect(text.find_first_not_of("+-0123456789") == std::string::npos);
    expect(buildNumber(std::to_string(*number)) == number);
    return 0;
}
