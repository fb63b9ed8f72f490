// The release feed. What is read has what an update takes.

#include "tests/fuzz/expect.h"
#include "update/release.h"

#include <cstdint>

using namespace wegslot;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    const auto release = readRelease(text);
    expect(release || !release.failure().message.builtIn().empty());
    if (release) expect(text.find("signature") != std::string::npos);
    return 0;
}
