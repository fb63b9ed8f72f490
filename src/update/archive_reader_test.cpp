#include "update/archive_reader.h"

#include "tests/support/tar_archive.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

using namespace wegslot;

namespace {

std::optional<std::string> objection(const std::vector<TarMember>& members) {
    return objectionTo(zipped(tarOf(members)));
}

using Said = std::optional<std::string>;

} // namespace

TEST(ArchiveCheck, AnOrdinaryImageIsAccepted) {
    EXPECT_EQ(
        objection(
            {{.name = "Wegslot.app/bin", .type = '5', .mode = 0755},
             {.name = "Wegslot.app/bin/wegslot", .content = std::string(1000, 'x'), .mode = 0755},
             {.name = "Wegslot.app/Info.json", .content = "{}"},
             {.name = "Wegslot.app/leeg"},
             {.name = "een lange naam", .prefix = "Wegslot.app/een/lange/map"},
             {.name = "Wegslot.app/bin/ook", .type = '2', .link = "./wegslot"},
             {.name = "Wegslot.app/bin/info", .type = '2', .link = "../Info.json"},
             {.name = "Wegslot.app/caf\xC3\xA9"}}),
        std::nullopt);
}

TEST(ArchiveCheck, NamesStayInTheApplication) {
    for (const char* const name :
         {"/Wegslot.app/x", "/etc/passwd", "Wegslot.app/../x", "Wegslot.app/a/../../x",
          "../Wegslot.app/x", "Wegslot.apps/x", "x", "Wegslot.app//x", "Wegslot.app/./x",
          "./Wegslot.app/x", "Wegslot.app/x/", "Wegslot.app/a\nb", "Wegslot.app/\x1b[2J",
          "Wegslot.app/\xFF", "", "Wegslot.app/.."})
        EXPECT_EQ(objection({{.name = name}}).value_or("").substr(0, 18), "naam buiten de app")
            << name;
    EXPECT_EQ(objectionTo(zipped(TarMember{.name = "Wegslot.app"}.bytes() + tarEnd)),
              "de app is geen map: Wegslot.app");
    EXPECT_EQ(objection({{.name = "Wegslot.app", .type = '2', .link = "/etc"}}),
              "de app is geen map: Wegslot.app");
    EXPECT_EQ(objection({{.name = "x", .prefix = "Wegslot.app/.."}}),
              "naam buiten de app: Wegslot.app/../x");
}

TEST(ArchiveCheck, LinksStayInTheApplicationWhereverOtherLinksLead) {
    const auto link = [](const std::string& target, const std::string& name = "Wegslot.app/a/b") {
        return objection({{.name = name, .type = '2', .link = target}});
    };
    for (const char* const target : {"c", "../c", "./c", "..", ".", "c/d/e", "./../c"})
        EXPECT_EQ(link(target), std::nullopt) << target;
    for (const char* const target :
         {"/etc", "../..", "../../c", "", "c//d", "c/..", "c/../../..", "../c/.."})
        EXPECT_EQ(link(target), "koppeling naar buiten: Wegslot.app/a/b") << target;
    EXPECT_EQ(link("..", "Wegslot.app/b"), "koppeling naar buiten: Wegslot.app/b");
    EXPECT_EQ(objection({{.name = "Wegslot.app/a", .type = '2', .link = "."},
                         {.name = "Wegslot.app/a/b"}}),
              "ligt achter een koppeling: Wegslot.app/a/b");
    EXPECT_EQ(
        objection({{.name = "Wegslot.app/a", .type = '2', .link = "."}, {.name = "Wegslot.app/a"}}),
        "ligt achter een koppeling: Wegslot.app/a");
}

TEST(ArchiveCheck, OnlyFilesFoldersAndLinksOfOrdinaryRights) {
    // Hard links, devices, pipes, the extensions of two other writers, and what nobody knows.
    for (const char type : {'1', '3', '4', '6', '7', 'g', 'x', 'L', 'K', 'S', 'Z', '\0'})
        EXPECT_EQ(objection({{.name = "Wegslot.app/x", .type = type}}),
                  "geen gewoon bestand: Wegslot.app/x")
            << type;
    for (const unsigned mode : {04755U, 02755U, 01755U, 010000U})
        EXPECT_EQ(objection({{.name = "Wegslot.app/x", .mode = mode}}),
                  "bijzondere rechten: Wegslot.app/x");
    EXPECT_EQ(objection({{.name = "Wegslot.app/x", .type = '5', .content = "x"}}),
              "inhoud die er niet hoort: Wegslot.app/x");
    EXPECT_EQ(objection({{.name = "Wegslot.app/x"}, {.name = "Wegslot.app/x"}}),
              "komt tweemaal voor: Wegslot.app/x");
}

TEST(ArchiveCheck, ABombIsRefusedAtItsHeaderAndAFloodOfZerosWhereItEnds) {
    EXPECT_EQ(objection({{.name = "Wegslot.app/x", .size = "10000000001"}}),
              "te groot: Wegslot.app/x");
    EXPECT_EQ(objection({{.name = "Wegslot.app/x", .size = "77777777777"}}),
              "te groot: Wegslot.app/x");
    const std::vector<TarMember> two{{.name = "Wegslot.app/x", .content = std::string(600, 'x')},
                                     {.name = "Wegslot.app/y", .content = std::string(424, 'y')}};
    EXPECT_EQ(objectionTo(zipped(tarOf(two)), 1024), std::nullopt);
    EXPECT_EQ(objectionTo(zipped(tarOf(two)), 1023), "te groot: Wegslot.app/y");
    EXPECT_EQ(objectionTo(zipped(tarOf({}) + std::string(std::size_t{64} << 20U, '\0'))),
              "inhoud na het einde");
}

TEST(ArchiveCheck, NumbersThatSomeReadDifferentlyAreRefused) {
    for (const std::string& size :
         {std::string("\x80\0\0\0\0\0\0\0\0\0\0\1", 12), // in binary
          std::string("-0000000001"), std::string(11, ' '), std::string("1 2"), std::string("9"),
          std::string(12, '0')}) // goes on to the end of its field
        EXPECT_EQ(objection({{.name = "Wegslot.app/x", .size = size}}),
                  "onleesbaar getal: Wegslot.app/x")
            << size;
    EXPECT_TRUE(objection({{.name = "Wegslot.app/x", .checksumError = 1}}));
    EXPECT_TRUE(objection({{.name = "Wegslot.app/x", .magic = std::string("ustar  \0", 8)}}));
    EXPECT_TRUE(objection({{.name = "Wegslot.app/x", .magic = std::string(8, '\0')}}));
}

TEST(ArchiveCheck, WhatIsNotWholeOrGoesOnIsRefused) {
    const std::string plain = tarOf({{.name = "Wegslot.app/x", .content = std::string(3000, 'x')}});
    const Bytes whole = zipped(plain);
    EXPECT_EQ(objectionTo(whole), std::nullopt);
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_TRUE(objectionTo(std::span(whole).first(size))) << size;
    Bytes further = whole;
    further.push_back(0);
    EXPECT_EQ(objectionTo(further), "het archief is niet heel");
    const Bytes second = zipped(appMember.bytes());
    Bytes two = whole; // some go on with the next member of the zip
    two.insert(two.end(), second.begin(), second.end());
    EXPECT_EQ(objectionTo(two), "het archief is niet heel");
    EXPECT_EQ(objectionTo(zipped(plain + appMember.bytes())), "inhoud na het einde");
    EXPECT_EQ(objectionTo(zipped(plain + "x")), "het archief is niet heel");
    EXPECT_EQ(objectionTo(zipped(tarEnd)), "het archief is leeg");
    EXPECT_EQ(objectionTo(zipped("")), "het archief is niet heel");
    EXPECT_EQ(objectionTo(zipped(appMember.bytes())), "het archief is niet heel"); // no empty block
    const std::string text = "geen archief";
    EXPECT_TRUE(objectionTo(Bytes(text.begin(), text.end())));
}

TEST(ArchiveCheck, EveryFlippedBitIsNoticedOrHarmless) {
    const Bytes whole = zipped(tarOf({{.name = "Wegslot.app/x", .content = "inhoud"}}));
    int refused = 0;
    for (std::size_t i = 0; i < whole.size() * 8; ++i) {
        Bytes changed = whole;
        changed[i / 8] ^= static_cast<std::uint8_t>(1U << (i % 8));
        refused += objectionTo(changed) ? 1 : 0;
    }
    // All but what the zip's header says of its writer and time.
    EXPECT_GT(refused, static_cast<int>(whole.size() * 8) - 80);
}
