#include "base/text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <ctime>

using namespace wegslot;
using namespace std::chrono_literals;

TEST(Hexadecimal, WritesAsManyDigitsAsAskedFor) {
    EXPECT_EQ(hexadecimal(0, 2), "00");
    EXPECT_EQ(hexadecimal(0xAF, 2), "AF");
    EXPECT_EQ(hexadecimal(0x1AF, 2), "AF");
    EXPECT_EQ(hexadecimal(0x1AF, 4), "01AF");
    EXPECT_EQ(hexadecimal(UINT64_MAX, 16), "FFFFFFFFFFFFFFFF");
}

TEST(Text, WholeNumbersHaveNoFraction) {
    EXPECT_EQ(decimal(-72.0), "-72");
    EXPECT_EQ(decimal(-0.0), "0");
    EXPECT_EQ(decimal(0.063), "0.063");
    EXPECT_EQ(decimal(-1e-7), "-0.0000001");
    EXPECT_EQ(decimal(999999999999999.0), "999999999999999");
}

TEST(Text, DatesDropTheFractionOfASecond) {
    const TimePoint instant =
        std::chrono::sys_days{std::chrono::year{2026} / 11 / 15} + 23h + 50min;
    EXPECT_EQ(utcText(instant), "2026-11-15 23:50:00 +0000");
    EXPECT_EQ(utcText(instant + 999ms), "2026-11-15 23:50:00 +0000");
    EXPECT_EQ(utcText(instant - 1ns), "2026-11-15 23:49:59 +0000");
}

TEST(Text, Utf8IsTellingBytesFromText) {
    EXPECT_TRUE(isUtf8(""));
    EXPECT_TRUE(isUtf8("Telefoon van Zoë \xF0\x9F\x93\xB1"));
    EXPECT_FALSE(isUtf8("\xFF"));
    EXPECT_FALSE(isUtf8("ab\xC3"));           // cut off
    EXPECT_FALSE(isUtf8("\xC0\x80"));         // overlong
    EXPECT_FALSE(isUtf8("\xE0\x80\x80"));     // overlong
    EXPECT_FALSE(isUtf8("\xED\xA0\x80"));     // surrogate
    EXPECT_FALSE(isUtf8("\xF4\x90\x80\x80")); // beyond U+10FFFF
    EXPECT_FALSE(isUtf8("\x80"));
}

TEST(Text, TrimsBlanksControlsAndFormatCharactersAtBothEnds) {
    using namespace std::string_view_literals;
    EXPECT_EQ(trimmed("iPhone14,2\n\0"sv), "iPhone14,2");
    EXPECT_EQ(trimmed(" \t\r\n a b \x7F"sv), "a b");
    EXPECT_EQ(trimmed("\u00A0\u2003\u3000x\u2028\u2029"sv), "x");
    EXPECT_EQ(trimmed("\uFEFF\u200Bx\u00AD\U000E0001"sv), "x");
    EXPECT_EQ(trimmed("\u0085\u180Ex\U0001343F"sv), "x");
    EXPECT_EQ(trimmed("\u00E9"sv), "\u00E9");
    EXPECT_EQ(trimmed("\u0301x\u20AC"sv), "\u0301x\u20AC"); // a mark and a sign stay
    EXPECT_EQ(trimmed(" \n\u200B"sv), "");
}

TEST(Text, ColumnsAreCountedInCharacters) {
    EXPECT_EQ(padded("Zoë", 5), "Zoë  ");
    EXPECT_EQ(padded("Zoë", 3), "Zoë");
    EXPECT_EQ(padded("Zoë", 2), "Zoë");
    EXPECT_EQ(padded("", 2), "  ");
}

TEST(Text, ControlCharactersAreShownAndNotObeyed) {
    EXPECT_EQ(printable("Zoë\n\x1B[2J\u0085\u2028x\xFF"), "Zoë\uFFFD\uFFFD[2J\uFFFD\uFFFDx\uFFFD");
}

TEST(Text, WhatTurnsOrHidesTextIsMadeVisible) {
    EXPECT_EQ(printable("a\u202Etxt.exe\u202C"), "a\uFFFDtxt.exe\uFFFD");
    for (const auto* const hidden :
         {"\u00AD", "\u061C", "\u200B", "\u200D", "\u200F", "\u2060", "\u2066", "\u2069", "\uFEFF",
          "\uFFF9", "\U000E0001", "\U000E0041"})
        EXPECT_EQ(printable(hidden), "\uFFFD");
    EXPECT_EQ(printable("\u00A0\u2003\u2027\u2030é漢🔑"), "\u00A0\u2003\u2027\u2030é漢🔑");
}
