#include "update/bundle_info.h"

#include <gtest/gtest.h>

using namespace wegslot;

namespace {

const std::string key32 = "AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8=";

} // namespace

TEST(BundleInfo, EveryKeyIsRead) {
    const auto info = readBundleInfo(R"({"CFBundleIdentifier": "nl.wegslot.Wegslot",
        "CFBundleShortVersionString": "1.4", "CFBundleVersion": "27",
        "WSUpdateFeedURL": "https://example.com/feed.json",
        "WSUpdatePublicKey": ")" + key32 +
                                     R"(", "other": 3})");
    EXPECT_EQ(info.identifier, "nl.wegslot.Wegslot");
    EXPECT_EQ(info.version, "1.4");
    EXPECT_EQ(info.build, 27);
    EXPECT_EQ(info.feed, "https://example.com/feed.json");
    ASSERT_TRUE(info.key);
    for (std::size_t i = 0; i < info.key->size(); ++i)
        EXPECT_EQ((*info.key)[i], i);
}

TEST(BundleInfo, WhatIsAbsentOrOfAnotherTypeIsNotThere) {
    const BundleInfo nothing;
    EXPECT_EQ(nothing.version, "?");
    for (const char* const text :
         {"{}", "", "[]", "null", "{\"CFBundleVersion\": ", "\xFF",
          R"({"CFBundleIdentifier": 1, "CFBundleShortVersionString": 1.4, "CFBundleVersion": 27,
              "WSUpdateFeedURL": ["x"], "WSUpdatePublicKey": null})"})
        EXPECT_EQ(readBundleInfo(text), nothing) << text;
}

TEST(BundleInfo, AKeyHasThirtyTwoBytes) {
    const auto key = [](const std::string& text) {
        return readBundleInfo(R"({"WSUpdatePublicKey": ")" + text + R"("})").key.has_value();
    };
    EXPECT_TRUE(key(key32));
    EXPECT_FALSE(key("AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHg==")); // 31
    EXPECT_FALSE(key("AAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8g")); // 33
    EXPECT_FALSE(key(key32 + "\\n"));
    EXPECT_FALSE(key(""));
}

TEST(BuildNumber, IsAWholeDecimalNumberWithinSixtyFourBits) {
    EXPECT_EQ(buildNumber("0"), 0);
    EXPECT_EQ(buildNumber("27"), 27);
    EXPECT_EQ(buildNumber("+27"), 27);
    EXPECT_EQ(buildNumber("-27"), -27);
    EXPECT_EQ(buildNumber("007"), 7);
    EXPECT_EQ(buildNumber("9223372036854775807"), INT64_MAX);
    EXPECT_EQ(buildNumber("-9223372036854775808"), INT64_MIN);
    for (const char* const text :
         {"", "+", "-", "+-1", "-+1", "++1", " 1", "1 ", "1.0", "0x10", "1e3",
          "9223372036854775808", "-9223372036854775809", "1\n", "einz"})
        EXPECT_EQ(buildNumber(text), std::nullopt) << text;
}

TEST(BundleInfo, OnlyTheBuildOfAVersionLineIsRead) {
    EXPECT_EQ(buildInVersionLine(versionLine("1.4", 27) + "\n"), 27);
    EXPECT_EQ(buildInVersionLine("wegslot 1.4 (nieuw) (27)\n"), 27);
    for (const auto* const other :
         {"", "wegslot 1.4 (27)", "wegslot 1.4 27\n", "iets 1.4 (27)\n", "wegslot 1.4 ()\n",
          "wegslot 1.4 (27)\n\n", "wegslot 1.4\n(27)\n", "wegslot (\n", "wegslot 1.4 (27 )\n"})
        EXPECT_EQ(buildInVersionLine(other), std::nullopt) << other;
}
