#include "update/verify.h"

#include <gtest/gtest.h>

#include <vector>

using namespace wegslot;

namespace {

std::vector<std::uint8_t> bytes(std::string_view text) { return {text.begin(), text.end()}; }

// The third of the standard's examples (RFC 8032, section 7.1): the message is af82.
constexpr PublicKey key{0xfc, 0x51, 0xcd, 0x8e, 0x62, 0x18, 0xa1, 0xa3, 0x8d, 0xa4, 0x7e,
                        0xd0, 0x02, 0x30, 0xf0, 0x58, 0x08, 0x16, 0xed, 0x13, 0xba, 0x33,
                        0x03, 0xac, 0x5d, 0xeb, 0x91, 0x15, 0x48, 0x90, 0x80, 0x25};
const std::vector<std::uint8_t> signedBytes{0xaf, 0x82};
constexpr auto signature =
    "YpHWV97sJAJIJ+acOr4BowzlSKKEdDpEXjaA19taw6wY/5tTjRbykK5n92CYTcZZSnwV6XFu0o3AJ77O6h7ECg==";

} // namespace

TEST(Verify, HashesAreThoseOfTheStandard) {
    EXPECT_EQ(sha256(bytes("")),
              "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(sha256(bytes("abc")),
              "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

TEST(Verify, ASignatureOfTheOwnerVerifies) { EXPECT_TRUE(isSigned(signedBytes, signature, key)); }

TEST(Verify, AnythingElseDoesNot) {
    EXPECT_FALSE(isSigned(bytes("other"), signature, key));
    EXPECT_FALSE(isSigned({}, signature, key));
    PublicKey other = key;
    other[0] ^= 1U;
    EXPECT_FALSE(isSigned(signedBytes, signature, other));
    EXPECT_FALSE(isSigned(signedBytes, signature, PublicKey{}));
    std::string changed = signature;
    changed[10] = changed[10] == 'A' ? 'B' : 'A';
    EXPECT_FALSE(isSigned(signedBytes, changed, key));
    for (const char* const text : {"", "Zm9v", "geen base64"})
        EXPECT_FALSE(isSigned(signedBytes, text, key)) << text;
    EXPECT_FALSE(isSigned(signedBytes, std::string(signature) + "\n", key));
    // Longer by one byte, and shorter.
    EXPECT_FALSE(isSigned(signedBytes, std::string(signature).substr(0, 85) + "gA=", key));
    EXPECT_FALSE(isSigned(signedBytes, std::string(signature).substr(0, 84), key));
}
