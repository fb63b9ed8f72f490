// The sample data of the Bluetooth Core Specification for the curve P-256, most significant byte
// first as they are printed there.
#include "elliptic_curve.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "text.h"

namespace controller {
namespace {

CurveNumber printedNumber(std::string_view printed) {
    const Bytes bytes = parseHex(printed).value();
    CurveNumber turned{};
    EXPECT_EQ(bytes.size(), turned.size()) << printed;
    std::reverse_copy(bytes.begin(), bytes.end(), turned.begin());
    return turned;
}

struct EllipticCurve : testing::Test {
    const CurveNumber oneSecret =
        printedNumber("3F49F6D4A3C55F3874C9B3E3D2103F504AFF607BEB40B7995899B8A6CD3C1ABD");
    const CurveNumber otherSecret =
        printedNumber("55188B3D32F6BB9A900AFCFBEED4E72A59CB9AC2F19D7CFB6B4FDD49F47FC5FD");
    const PublicKey one{
        .x = printedNumber("20B003D2F297BE2C5E2C83A7E9F9A5B9EFF49111ACF4FDDBCC0301480E359DE6"),
        .y = printedNumber("DC809C49652AEB6D63329ABF5A52155C766345C28FED3024741C8ED01589D28B")};
    const PublicKey other{
        .x = printedNumber("1EA1F0F01FAF1D9609592284F19E4C0047B58AFD8615A69F559077B22FAAA190"),
        .y = printedNumber("4C55F33E429DAD377356703A9AB85160472D1130E28E36765F89AFF915B1214A")};
};

TEST_F(EllipticCurve, PublicKeysAreThoseOfTheSample) {
    EXPECT_EQ(publicKeyOf(oneSecret), one);
    EXPECT_EQ(publicKeyOf(otherSecret), other);
}

TEST_F(EllipticCurve, BothSidesShareTheSecretOfTheSample) {
    const CurveNumber shared =
        printedNumber("EC0234A357C8AD05341010A60A397D9B99796B13B4F866F1868D34F373BFA698");
    EXPECT_EQ(sharedSecret(oneSecret, other), shared);
    EXPECT_EQ(sharedSecret(otherSecret, one), shared);
}

TEST_F(EllipticCurve, APointBesideTheCurveSharesNothing) {
    EXPECT_EQ(sharedSecret(oneSecret, {.x = other.x, .y = other.x}), std::nullopt);
}

} // namespace
} // namespace controller
