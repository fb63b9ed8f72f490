#include "identity/stored_identities.h"

#include "tests/support/known_identities.h"

#include <gtest/gtest.h>

using namespace wegslot;

namespace {

KnownIdentities both() {
    KnownIdentity watch = watchsIdentity();
    watch.name = "\"irk\": \"Horloge\" van Ö\\";
    watch.fixedId = Uuid::parse("00000000-0000-0000-0000-000000000001");
    return identitiesOf({phonesIdentity(), watch});
}

std::string complaintAt(std::string_view text) {
    std::pmr::string copy(text, &ordinaryMemory());
    const auto read = decodeIdentities(copy, ordinaryMemory());
    return read ? "" : read.failure().message.builtIn();
}

std::string around(const std::string& record) {
    return R"({"version": 1, "identities": [)" + record + "]}";
}

} // namespace

TEST(StoredIdentities, AreReadAsTheyWereWritten) {
    std::pmr::string text = encodeIdentities(both(), ordinaryMemory());
    const auto read = decodeIdentities(text, ordinaryMemory());
    ASSERT_TRUE(read) << read.failure().message.builtIn();
    EXPECT_EQ(*read, both());
}

TEST(StoredIdentities, AreALegibleFile) {
    KnownIdentities list = both();
    list.pop_back();
    EXPECT_EQ(std::string(encodeIdentities(list, ordinaryMemory())), R"({
  "version": 1,
  "identities": [
    {
      "name": "Telefoon",
      "irk": "ec0234a357c8ad05341010a60a397d9b"
    }
  ]
}
)");
}

TEST(StoredIdentities, LeaveNoSecretInWhatTheLibraryReads) {
    std::pmr::string text = encodeIdentities(both(), ordinaryMemory());
    ASSERT_NE(text.find(phonesKey), std::pmr::string::npos);
    ASSERT_TRUE(decodeIdentities(text, ordinaryMemory()));
    EXPECT_EQ(text.find(phonesKey), std::pmr::string::npos);
    EXPECT_EQ(text.find(watchsKey), std::pmr::string::npos);
    // Nor half of one that was mistyped.
    std::pmr::string mistyped(around(R"({"name": "a", "irk": "ec0234a357c8ad05"})"),
                              &ordinaryMemory());
    EXPECT_FALSE(decodeIdentities(mistyped, ordinaryMemory()));
    EXPECT_EQ(mistyped.find("ec02"), std::pmr::string::npos);
}

TEST(StoredIdentities, NothingStandsForNone) {
    std::pmr::string text(&ordinaryMemory());
    const auto read = decodeIdentities(text, ordinaryMemory());
    ASSERT_TRUE(read);
    EXPECT_TRUE(read->empty());
}

TEST(StoredIdentities, ThatAreWrongAreToldWhere) {
    const std::string expected = R"(verwacht een "name", een "irk" van 32 hexadecimale cijfers en )"
                                 R"(hooguit een "id")";
    const std::string good = R"({"name": "a", "irk": ")" + std::string(phonesKey) + R"("})";
    EXPECT_EQ(complaintAt(around(good)), "");
    EXPECT_EQ(complaintAt(around(good + R"(, {"name": "b"})")), "identiteit 2: " + expected);
    EXPECT_EQ(complaintAt(around(R"({"name": "a", "irk": "ec02"})")), "identiteit 1: " + expected);
    EXPECT_EQ(complaintAt(around(R"({"name": 1, "irk": ")" + std::string(phonesKey) + R"("})")),
              "identiteit 1: " + expected);
    EXPECT_EQ(complaintAt(around(R"({"name": "a", "id": "x", "irk": ")" + std::string(phonesKey) +
                                 R"("})")),
              "identiteit 1: " + expected);
    EXPECT_EQ(complaintAt("{\n\"version\": 1,\n]"), "regel 3: geen JSON");
    EXPECT_EQ(complaintAt("[]"), "een versie die dit Wegslot niet kent");
    EXPECT_EQ(complaintAt(R"({"version": 2, "identities": []})"),
              "een versie die dit Wegslot niet kent");
    EXPECT_EQ(complaintAt(R"({"version": 1})"), "de lijst \"identities\" ontbreekt");
    std::string many = good;
    for (std::size_t i = 0; i < Identities::most; ++i)
        many += "," + good;
    EXPECT_EQ(complaintAt(around(many)), "meer dan 64 identiteiten");
}
