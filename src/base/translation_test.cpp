#include "base/translation.h"

#include "tests/support/glossary.h"

#include <gtest/gtest.h>

using namespace wegslot;

TEST(Translation, WithoutACatalogueTextsAreAsTheyStand) {
    EXPECT_EQ(translated("Nu locken"), "Nu locken");
    EXPECT_EQ(translated("Pauze: %1", {"100 %2 %"}), "Pauze: 100 %2 %");
    EXPECT_EQ(counted("%1 dag", "%1 dagen", 1, {"1"}).translated(), "1 dag");
    EXPECT_EQ(counted("%1 dag", "%1 dagen", 0, {"0"}).translated(), "0 dagen");
}

TEST(Translation, ALanguageMayHaveThePlacesInItsOwnOrderOrTwice) {
    const Glossary english{{"%1 van %2", "%2's %1, %1"}};
    EXPECT_EQ(translated("%1 van %2", {"sleutel", "Ans"}), "Ans's sleutel, sleutel");
}

TEST(Translation, APlaceThatNothingIsForStaysAsItIs) {
    EXPECT_EQ(translated("%1 %2 %0 %", {"een"}), "een %2 %0 %");
}

TEST(Translation, OnlyTheUserSeesTheirLanguage) {
    const Glossary english{{"Camera is in gebruik", "The camera is in use"}};
    const Message reason = message("Camera is in gebruik");
    EXPECT_EQ(reason.translated(), "The camera is in use");
    EXPECT_EQ(reason.builtIn(), "Camera is in gebruik");
}

TEST(Translation, WhatIsInAPlaceIsTranslatedToo) {
    const Glossary english{{"Update mislukt: %1", "Update failed: %1"}, {"geen feed", "no feed"}};
    const Message failed = message("Update mislukt: %1", {message("geen feed")});
    EXPECT_EQ(failed.translated(), "Update failed: no feed");
    EXPECT_EQ(failed.builtIn(), "Update mislukt: geen feed");
}

TEST(Translation, ANameThatHappensToBeATextStaysAName) {
    const Glossary english{{"Stop", "Quit"}, {"%1 is weg", "%1 is gone"}};
    EXPECT_EQ(translated("%1 is weg", {"Stop"}), "Stop is gone");
    EXPECT_EQ(Message("Stop").translated(), "Stop");
}

TEST(Translation, TheFormIsTheLanguagesOwn) {
    const Glossary polish{{"%1 dag#1", "%1 dzien"}, {"%1 dag#5", "%1 dni"}};
    EXPECT_EQ(counted("%1 dag", "%1 dagen", 5, {"5"}).translated(), "5 dni");
    EXPECT_EQ(counted("%1 dag", "%1 dagen", 7, {"7"}).translated(), "7 dagen");
}

TEST(Translation, MessagesAreTheSameWhenTheirWordsAre) {
    EXPECT_EQ(message("Pauze: %1", {"nu"}), Message("Pauze: nu"));
    EXPECT_NE(message("Pauze: %1", {"nu"}), message("Pauze: %1", {"straks"}));
}

TEST(Translation, WhatIsTheSameInEveryLanguageCanBeToldApart) {
    using Texts = std::vector<std::string>;
    EXPECT_EQ(message("Camera is in gebruik").verbatim(), Texts{});
    EXPECT_EQ(Message("Ans").verbatim(), Texts{"Ans"});
    const Message all = message("%1, %2", {"Ans", "Bo"});
    EXPECT_EQ(message("%1 en %2 (%3)", {all, "Cas", message("weg")}).verbatim(),
              (Texts{"Ans", "Bo", "Cas"}));
    EXPECT_EQ(counted("%1 dag", "%1 dagen", 2, {"2"}).verbatim(), Texts{"2"});
}

TEST(Translation, WhatAnotherOneTellsIsTranslatedIfThereAreWordsForIt) {
    const Glossary english{{"Bluetooth-apparaat", "Bluetooth device"}};
    EXPECT_EQ(asItStands("Bluetooth-apparaat").translated(), "Bluetooth device");
    EXPECT_EQ(asItStands("Bluetooth-apparaat").builtIn(), "Bluetooth-apparaat");
    EXPECT_EQ(asItStands("Nieuw %1").translated(), "Nieuw %1");
}

TEST(Translation, WhatASystemSaysIsQuotedOnlyWhereTextsAreAsTheyStand) {
    const Message full = quoted("No space left: %1", message("geen ruimte meer"));
    EXPECT_EQ(full.translated(), "No space left: %1");
    const Glossary french{{"geen ruimte meer", "plus de place"}};
    EXPECT_EQ(full.translated(), "plus de place");
    EXPECT_EQ(full.builtIn(), "No space left: %1");
    EXPECT_EQ(Message("%1: %2", {"a", full}).translated(), "a: plus de place");
}
