// Strict base64: whatever is read is written again the same way, so that no value has two forms.

#include "update/base64.h"
#include "tests/fuzz/expect.h"

#include <cstdint>
#include <string>

#include <openssl/evp.h>

using namespace wegslot;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(data, data + size);
    const auto bytes = decodeBase64(text);
    if (!bytes) return 0;
    std::string written(text.size() + 4, '\0');
    const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(written.data()),
                                       bytes->data(), static_cast<int>(bytes->size()));
    written.resize(static_cast<std::size_t>(length));
    expect(written == text);
    return 0;
}
