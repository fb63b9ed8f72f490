#include "ui/whole_number.h"

#include <gtest/gtest.h>

#include <limits>

using namespace wegslot;

TEST(WholeNumber, IsCutOffTowardsZero) {
    EXPECT_EQ(wholeNumber(5), "5");
    EXPECT_EQ(wholeNumber(5.999), "5");
    EXPECT_EQ(wholeNumber(-67), "-67");
    EXPECT_EQ(wholeNumber(-67.9), "-67");
    EXPECT_EQ(wholeNumber(-0.5), "0");
    EXPECT_EQ(wholeNumber(0.5), "0");
}

TEST(WholeNumber, WhateverAFileMayHoldIsWrittenAsANumber) {
    EXPECT_EQ(wholeNumber(std::numeric_limits<double>::quiet_NaN()), "0");
    EXPECT_EQ(wholeNumber(std::numeric_limits<double>::infinity()), "1000000000");
    EXPECT_EQ(wholeNumber(-1e300), "-1000000000");
    EXPECT_EQ(wholeNumber(999'999'999), "999999999");
    EXPECT_EQ(wholeNumber(1'000'000'001), "1000000000");
}
