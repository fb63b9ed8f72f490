// The sample data of the Bluetooth Core Specification (Security Manager), written most significant
// byte first as they are printed there.
#include "security_functions.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "text.h"

namespace controller {
namespace {

template <typename Array>
Array number(std::string_view printed) {
    const Bytes bytes = parseHex(printed).value();
    Array array{};
    EXPECT_EQ(bytes.size(), array.size()) << printed;
    std::reverse_copy(bytes.begin(), bytes.end(), array.begin());
    return array;
}

Key key(std::string_view printed) { return number<Key>(printed); }

TEST(SecurityFunctions, ConfirmValueIsThatOfTheSample) {
    const PairingContext context{
        .request = number<PairingMessage>("07071000000101"),
        .response = number<PairingMessage>("05000800000302"),
        .initiator = parseAddress("A1:A2:A3:A4:A5:A6", AddressType::Random).value(),
        .responder = parseAddress("B1:B2:B3:B4:B5:B6", AddressType::Public).value()};
    EXPECT_EQ(confirmValue(Key{}, key("5783D52156AD6F0E6388274EC6702EE0"), context),
              key("1E1E3FEF878988EAD2A74DC5BEF13B86"));
}

TEST(SecurityFunctions, ShortTermKeyIsThatOfTheSample) {
    EXPECT_EQ(shortTermKey(Key{}, key("000F0E0D0C0B0A091122334455667788"),
                           key("010203040506070899AABBCCDDEEFF00")),
              key("9A1FE1F0E8B0F49B5B4216AE796DA062"));
}

TEST(SecurityFunctions, AddressHashIsThatOfTheSample) {
    EXPECT_EQ(addressHash(key("EC0234A357C8AD05341010A60A397D9B"), number<AddressPart>("708194")),
              number<AddressPart>("0DFBAA"));
}

} // namespace
} // namespace controller
