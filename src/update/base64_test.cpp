#include "update/base64.h"

#include <gtest/gtest.h>

#include <string>

using namespace wegslot;

namespace {

std::optional<std::string> decoded(std::string_view text) {
    const auto bytes = decodeBase64(text);
    if (!bytes) return std::nullopt;
    return std::string(bytes->begin(), bytes->end());
}

} // namespace

TEST(Base64, TheVectorsOfTheStandard) {
    EXPECT_EQ(decoded(""), "");
    EXPECT_EQ(decoded("Zg=="), "f");
    EXPECT_EQ(decoded("Zm8="), "fo");
    EXPECT_EQ(decoded("Zm9v"), "foo");
    EXPECT_EQ(decoded("Zm9vYg=="), "foob");
    EXPECT_EQ(decoded("Zm9vYmE="), "fooba");
    EXPECT_EQ(decoded("Zm9vYmFy"), "foobar");
    EXPECT_EQ(decodeBase64("+/+/"), (std::vector<std::uint8_t>{0xFB, 0xFF, 0xBF}));
}

TEST(Base64, AnythingButStrictBase64IsNone) {
    for (const char* const text : {
             "Zg",         // no padding
             "Zg=",        // half of it
             "Zg===",      // too much
             "====",       // nothing but
             "Zm9v=",      // where none belongs
             "Zm=v",       // in the middle
             "Zm9v\n",     // a line break
             "Zm9v\nZm9v", // within
             " Zm9v",      // a blank
             "Zm-_",       // the other alphabet
             "Zh==",       // bits left over: it would read as Zg==
             "Zm9=",       // the same with two bytes
             "Z",          // no whole byte
         })
        EXPECT_EQ(decoded(text), std::nullopt) << text;
    EXPECT_EQ(decoded(std::string_view("Zm9\0", 4)), std::nullopt);
    EXPECT_EQ(decoded("\xC3\xA9\xC3\xA9"), std::nullopt);
}
