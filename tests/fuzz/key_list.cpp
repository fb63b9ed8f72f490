// The stored list of keys. What can be read can be written, and reads the same again.

#include "model/key_codec.h"
#include "tests/fuzz/expect.h"

#include <cstdint>
#include <set>

using namespace wegslot;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    const auto keys = decodeKeys(text);
    if (!keys) return 0;
    const auto written = encodeKeys(*keys);
    expect(written.has_value());
    expect(decodeKeys(*written) == keys);
    std::set<Uuid> ids;
    for (const KeyDevice& key : *keys)
        expect(ids.insert(key.id).second);
    return 0;
}
