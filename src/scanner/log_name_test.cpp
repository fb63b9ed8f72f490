#include "scanner/log_name.h"

#include <gtest/gtest.h>

using namespace wegslot;

TEST(LogName, ANameFakesNoFieldOfItsLine) {
    EXPECT_EQ(nameForLog("Tag type=0x10 rssi=-30"), "Tag\uFFFDtype=0x10\uFFFDrssi=-30");
    EXPECT_EQ(nameForLog("a  type=x"), "a \uFFFDtype=x");
    EXPECT_EQ(nameForLog(" naam=x"), "\uFFFDnaam=x");
    EXPECT_EQ(nameForLog("Tag\u00A0type=0x10"), "Tag\uFFFDtype=0x10");
    EXPECT_EQ(nameForLog("Tag\u2003type=0x10"), "Tag\uFFFDtype=0x10");
    EXPECT_EQ(nameForLog("a\ntype=1"), "a\uFFFDtype=1");
}

TEST(LogName, OtherNamesStayAsTheyAre) {
    for (const auto* const name :
         {"", " ", "Telefoon van Zoë", "1 + 1 = 2", "x=1", "a =b", "type", "= =", "a 1=b"})
        EXPECT_EQ(nameForLog(name), name);
}
