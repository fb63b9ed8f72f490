#include "coupling/obstacle_words.h"

#include <gtest/gtest.h>

#include <set>

using namespace wegslot::coupling;

TEST(ObstacleWords, EachObstacleHasItsOwnAndSaysWhatToDo) {
    std::set<std::string> all;
    for (const Obstacle obstacle :
         {Obstacle::noRadio, Obstacle::off, Obstacle::noPeripheral, Obstacle::noRoom,
          Obstacle::denied, Obstacle::discoverable, Obstacle::failed}) {
        const std::string text = words({obstacle}).builtIn();
        EXPECT_TRUE(text.ends_with('.')) << text;
        EXPECT_NE(text.find(". "), std::string::npos) << text;
        all.insert(text);
    }
    EXPECT_EQ(all.size(), 7U);
}

TEST(ObstacleWords, WhatTheStackSaidFakesNoLine) {
    EXPECT_EQ(words({Obstacle::failed, "org.bluez.Error.Failed: a\nb"}),
              "Bluetooth weigert: org.bluez.Error.Failed: a\uFFFDb. Zet het uit en weer aan, en "
              "probeer het opnieuw.");
}
