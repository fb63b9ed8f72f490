#include "model/key_codec.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace wegslot;

namespace {

const Uuid id = *Uuid::parse("0F2C41A7-0B3D-4C5E-8F60-718293A4B5C6");
const KeyDevice bare{
    .id = id, .name = "Telefoon", .model = {}, .isApple = {}, .threshold = Dbm{-75}};
const std::string bareJson =
    R"([{"id":"0F2C41A7-0B3D-4C5E-8F60-718293A4B5C6","name":"Telefoon","threshold":-75}])";

std::string record(const std::string& fields) {
    return R"([{"id":"0F2C41A7-0B3D-4C5E-8F60-718293A4B5C6",)" + fields + "}]";
}

} // namespace

TEST(KeyCodec, LeavesAbsentFieldsOut) {
    EXPECT_EQ(encodeKeys({bare}), bareJson);
    EXPECT_EQ(decodeKeys(bareJson), std::vector{bare});
}

TEST(KeyCodec, WritesFieldsInTheirOrderAndTheIdInUpperCase) {
    KeyDevice full = bare;
    full.model = "iPhone14,2";
    full.isApple = true;
    full.threshold = Dbm{-71.5};
    const auto json = encodeKeys({full});
    EXPECT_EQ(json, record(R"("name":"Telefoon","model":"iPhone14,2","isApple":true,)"
                           R"("threshold":-71.5)"));
    EXPECT_EQ(decodeKeys(*json), std::vector{full});
}

TEST(KeyCodec, OfAPastedKeyItIsWrittenAndOfAnotherNothingIs) {
    KeyDevice pasted = bare;
    pasted.isPasted = true;
    const auto json = encodeKeys({pasted});
    EXPECT_EQ(json, record(R"("name":"Telefoon","threshold":-75,"isPasted":true)"));
    EXPECT_EQ(decodeKeys(*json), std::vector{pasted});
    EXPECT_EQ(decodeKeys(record(R"("name":"Telefoon","threshold":-75,"isPasted":false)")),
              std::vector{bare});
}

TEST(KeyCodec, AnEmptyListIsAnEmptyArray) {
    EXPECT_EQ(encodeKeys({}), "[]");
    EXPECT_EQ(decodeKeys("[]"), std::vector<KeyDevice>{});
}

TEST(KeyCodec, NullStandsForAnAbsentOptionalField) {
    EXPECT_EQ(
        decodeKeys(record(R"("name":"Telefoon","model":null,"isApple":null,"threshold":-75)")),
        std::vector{bare});
}

TEST(KeyCodec, UnknownFieldsArePassedOver) {
    EXPECT_EQ(decodeKeys(record(R"("name":"Telefoon","kleur":"rood","threshold":-75)")),
              std::vector{bare});
}

TEST(KeyCodec, ARecordThatLacksARequiredFieldSpoilsTheList) {
    EXPECT_FALSE(decodeKeys(record(R"("name":"Telefoon")")));
    EXPECT_FALSE(decodeKeys(record(R"("threshold":-75)")));
    EXPECT_FALSE(decodeKeys(R"([{"name":"Telefoon","threshold":-75}])"));
    EXPECT_FALSE(decodeKeys(bareJson.substr(0, bareJson.size() - 1) + R"(,{"name":"Tag"}])"));
}

TEST(KeyCodec, AWronglyTypedFieldSpoilsTheList) {
    EXPECT_FALSE(decodeKeys(record(R"("name":5,"threshold":-75)")));
    EXPECT_FALSE(decodeKeys(record(R"("name":"Telefoon","threshold":"-75")")));
    EXPECT_FALSE(decodeKeys(record(R"("name":"Telefoon","threshold":true)")));
    EXPECT_FALSE(decodeKeys(record(R"("name":"Telefoon","model":1,"threshold":-75)")));
    EXPECT_FALSE(decodeKeys(record(R"("name":"Telefoon","threshold":-75,"isPasted":1)")));
    EXPECT_FALSE(decodeKeys(record(R"("name":"Telefoon","isApple":1,"threshold":-75)")));
    EXPECT_FALSE(decodeKeys(R"([{"id":"0F2C41A7","name":"Telefoon","threshold":-75}])"));
    EXPECT_FALSE(decodeKeys("[5]"));
}

TEST(KeyCodec, ARepeatedIdSpoilsTheList) {
    const std::string one = bareJson.substr(1, bareJson.size() - 2);
    EXPECT_FALSE(decodeKeys("[" + one + "," + one + "]"));
}

TEST(KeyCodec, WhatIsNoArraySpoilsTheList) {
    for (const char* const json : {"", "{}", "null", "[", "[]]", "tekst", "\xFF"})
        EXPECT_FALSE(decodeKeys(json)) << json;
}

TEST(KeyCodec, WhatJsonCannotSayIsNotEncoded) {
    KeyDevice key = bare;
    key.threshold = Dbm{std::numeric_limits<double>::quiet_NaN()};
    EXPECT_FALSE(encodeKeys({key}));
    key.threshold = Dbm{-std::numeric_limits<double>::infinity()};
    EXPECT_FALSE(encodeKeys({key}));
    key = bare;
    key.name = "\xFF";
    EXPECT_FALSE(encodeKeys({key}));
}
