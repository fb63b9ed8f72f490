#include "platform/linux/media/desktop_entry_text.h"

#include <gtest/gtest.h>

using namespace wegslot;

namespace {

/// As "key=value" each.
std::vector<std::string> fieldsOf(std::string_view text) {
    std::vector<std::string> fields;
    if (const auto group = entryGroup(text))
        for (const EntryField& field : group->fields)
            fields.push_back(std::string(field.key) + "=" + std::string(field.value));
    return fields;
}

using Fields = std::vector<std::string>;

} // namespace

TEST(DesktopEntryText, FieldsAreThoseOfTheGroupInTheirOrder) {
    EXPECT_EQ(fieldsOf("Before=1\n[Other]\nA=1\n[Desktop Entry]\nB = 2 \r\n#C=3\nno field\nD=\n"
                       "[Desktop Action x]\nE=5\n[Desktop Entry]\nF=6\n"),
              (Fields{"B=2 ", "D="}));
    EXPECT_EQ(entryGroup("[Other]\nA=1\n"), std::nullopt);
}

TEST(DesktopEntryText, AChangedFieldStaysWhereItStood) {
    EXPECT_EQ(withFields("[Desktop Entry]\nA=1\nB = 2\nC=3\n", {{"B", "x"}}),
              "[Desktop Entry]\nA=1\nB=x\nC=3\n");
    EXPECT_EQ(withFields("[Desktop Entry]\nA=1", {{"A", "x"}}), "[Desktop Entry]\nA=x\n");
}

TEST(DesktopEntryText, ANewFieldFollowsTheLastOfTheGroup) {
    EXPECT_EQ(withFields("[Desktop Entry]\nA=1\n\n# end\n[Other]\nB=2\n", {{"B", "x"}, {"C", "y"}}),
              "[Desktop Entry]\nA=1\nB=x\nC=y\n\n# end\n[Other]\nB=2\n");
    EXPECT_EQ(withFields("[Desktop Entry]\nA=1", {{"B", "x"}}), "[Desktop Entry]\nA=1\nB=x\n");
    EXPECT_EQ(withFields("[Desktop Entry]", {{"B", "x"}}), "[Desktop Entry]\nB=x\n");
}

TEST(DesktopEntryText, AFieldIsTakenAwayWithItsLineAndOneThatIsNotThereIsNothing) {
    EXPECT_EQ(withFields("[Desktop Entry]\nA=1\nB=2\nC=3\n", {{"B", std::nullopt}}),
              "[Desktop Entry]\nA=1\nC=3\n");
    EXPECT_EQ(withFields("[Desktop Entry]\nA=1\n", {{"B", std::nullopt}}),
              "[Desktop Entry]\nA=1\n");
}

TEST(DesktopEntryText, OneThatStandsThereTwiceIsOneAfterwards) {
    EXPECT_EQ(withFields("[Desktop Entry]\nA=1\nB=2\nA=3\n", {{"A", "x"}}),
              "[Desktop Entry]\nA=x\nB=2\n");
    EXPECT_EQ(withFields("[Desktop Entry]\nA=1\nB=2\nA=3\n", {{"A", std::nullopt}}),
              "[Desktop Entry]\nB=2\n");
}

TEST(DesktopEntryText, TranslationsCommentsAndOtherGroupsAreNotTouched) {
    const std::string text = "\xEF\xBB\xBF# A=0\n[Other]\nA=1\n[Desktop Entry]\n#A=2\nA[nl]=3\n"
                             "AB=4\n[More]\nA=5\n";
    EXPECT_EQ(withFields(text, {{"A", std::nullopt}}), text);
    EXPECT_EQ(withFields(text, {}), text);
}

TEST(DesktopEntryText, WithoutTheGroupNothingChanges) {
    EXPECT_EQ(withFields("A=1\n", {{"A", "x"}}), "A=1\n");
    EXPECT_EQ(withFields("", {{"A", "x"}}), "");
}

TEST(DesktopEntryText, AnArgumentIsQuotedWhereItMustBe) {
    EXPECT_EQ(execWord("/opt/W-1.0_a+b,c@d:e/wegslot"), "/opt/W-1.0_a+b,c@d:e/wegslot");
    EXPECT_EQ(execWord("100%"), "100%%");
    EXPECT_EQ(execWord("a b"), R"("a b")");
    EXPECT_EQ(execWord(""), R"("")");
    EXPECT_EQ(execWord("Zoë"), R"("Zoë")");
    EXPECT_EQ(execWord(R"(a"b`c$d)"), R"("a\\"b\\`c\\$d")");
    EXPECT_EQ(execWord(R"(a\b)"), R"("a\\\\b")");
    EXPECT_EQ(execWord("a\nb\tc\rd"), R"("a\nb\tc\rd")");
    EXPECT_EQ(execWord("a'b;c=d~e&f"), R"("a'b;c=d~e&f")");
}
