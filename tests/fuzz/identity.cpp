// What somebody pastes as an identity, and what stands in the file of those that are kept. A
// complaint repeats nothing of it; what can be written reads the same again.

#include "base/text.h"
#include "identity/identity_key.h"
#include "identity/stored_identities.h"
#include "tests/fuzz/expect.h"

#include <algorithm>
#include <cstdint>
#include <string>

using namespace wegslot;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto& memory = *std::pmr::new_delete_resource();
    std::pmr::string text(data, data + size, &memory);
    if (const auto pasted = readIdentity(text)) {
        std::pmr::string digits(&memory);
        pasted->key.appendHexadecimal(digits);
        const auto again = readIdentity(digits);
        expect(again && again->key == pasted->key);
    }
    const auto kept = decodeIdentities(text, memory);
    if (!kept) return 0;
    const bool isText =
        std::ranges::all_of(*kept, [](const KnownIdentity& known) { return isUtf8(known.name); });
    std::pmr::string written = encodeIdentities(*kept, memory);
    const auto again = decodeIdentities(written, memory);
    expect(again && (!isText || *again == *kept));
    return 0;
}
