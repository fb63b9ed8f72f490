#include "update/release.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

using namespace wegslot;

namespace {

using Json = nlohmann::json;

Json good() {
    return {{"version", "1.4"},    {"build", 27},         {"url", "Wegslot-27.tar.gz"},
            {"sha256", "AB01"},    {"signature", "Zm9v"}, {"notes", "Nieuw: alles"},
            {"unknown", {1, 2, 3}}};
}

Result<Release> with(const char* key, const Json& value) {
    Json feed = good();
    feed[key] = value;
    return readRelease(feed.dump());
}

} // namespace

TEST(Release, EveryKeyIsReadAndUnknownOnesArePassedOver) {
    const auto release = readRelease(good().dump());
    ASSERT_TRUE(release);
    EXPECT_EQ(*release, (Release{"1.4", 27, "Wegslot-27.tar.gz", "AB01", "Zm9v", "Nieuw: alles"}));
}

TEST(Release, NotesNeedNotBeThere) {
    Json feed = good();
    feed.erase("notes");
    ASSERT_TRUE(readRelease(feed.dump()));
    EXPECT_EQ(readRelease(feed.dump())->notes, std::nullopt);
    ASSERT_TRUE(with("notes", nullptr));
    EXPECT_FALSE(with("notes", 3));
}

TEST(Release, EveryOtherKeyMustBeThereWithItsType) {
    for (const char* const key : {"version", "build", "url", "sha256", "signature"}) {
        Json feed = good();
        feed.erase(key);
        const auto release = readRelease(feed.dump());
        ASSERT_FALSE(release) << key;
        EXPECT_EQ(release.failure().message,
                  "\"" + std::string(key) + "\" ontbreekt in de feed of klopt niet");
        for (const Json& other :
             {Json(nullptr), Json(true), Json(1.5), Json::array(), Json::object()})
            EXPECT_FALSE(with(key, other)) << key << other;
    }
    EXPECT_FALSE(with("version", 1));
}

TEST(Release, TheBuildIsAWholeNumberWithinSixtyFourBits) {
    EXPECT_EQ(with("build", INT64_MAX)->build, INT64_MAX);
    EXPECT_EQ(with("build", INT64_MIN)->build, INT64_MIN);
    EXPECT_FALSE(with("build", std::uint64_t{1} << 63U));
    EXPECT_FALSE(with("build", "27"));
    EXPECT_FALSE(with("build", 27.0));
}

TEST(Release, WhatIsNoJsonObjectIsNoRelease) {
    const std::string deep = std::string(100000, '[') + std::string(100000, ']');
    for (const std::string& feed :
         {std::string(), std::string("[]"), std::string("{"), good().dump() + "x",
          std::string("<html>"), std::string("{\"a\":\"\xFF\"}"), deep, std::string(1000, '{')}) {
        const auto release = readRelease(feed);
        ASSERT_FALSE(release);
        EXPECT_EQ(release.failure().message, "de feed is geen JSON-object");
    }
    Json feed = good();
    const std::string text = feed.dump();
    EXPECT_TRUE(readRelease(text.substr(0, text.size() - 1) + ",\"deep\":" + deep + "}"));
}

TEST(Release, AVersionIsShortAndHidesNothing) {
    EXPECT_TRUE(with("version", std::string(64, '1')));
    EXPECT_TRUE(with("version", "1.4 (bèta)"));
    for (const std::string& wrong : {std::string(65, '1'), std::string("1\n4"),
                                     std::string("1\u202E4"), std::string("1\u200B4")})
        EXPECT_FALSE(with("version", wrong));
}
