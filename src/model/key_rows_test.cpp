#include "model/key_rows.h"

#include "tests/support/world.h"

#include <gtest/gtest.h>

using namespace wegslot;

TEST(KeyRows, AreReadAsTheyWereWritten) {
    const KeyRows rows{{numbered(1), 17}, {numbered(2), 2'000'000'000}};
    EXPECT_EQ(decodeRows(encodeRows(rows)), rows);
    EXPECT_EQ(decodeRows(encodeRows({})), KeyRows{});
}

TEST(KeyRows, WhatIsNoNumberOfItsOwnForEachIdMeansNothing) {
    const std::string id = "\"" + numbered(1).text() + "\"";
    const std::string other = "\"" + numbered(2).text() + "\"";
    for (const std::string& text :
         {std::string("[]"), std::string(""), std::string("{"), std::string("{\"telefoon\":1}"),
          "{" + id + ":0}", "{" + id + ":-1}", "{" + id + ":1.5}", "{" + id + ":\"1\"}",
          "{" + id + ":2147483648}", "{" + id + ":1," + other + ":1}"})
        EXPECT_EQ(decodeRows(text), std::nullopt) << text;
}

TEST(KeyRows, AFreshOneIsNobodysYet) {
    const KeyRows rows{{numbered(1), 4}, {numbered(2), 5}};
    int next = 4;
    EXPECT_EQ(freshRow(rows, [&next] { return next++; }), 6);
}
