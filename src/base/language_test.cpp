#include "base/language.h"

#include <gtest/gtest.h>

#include <map>

using namespace wegslot;

namespace {

using Names = std::vector<std::string>;

Names under(const std::map<std::string, std::string>& environment) {
    return languages([&environment](const char* name) {
        const auto found = environment.find(name);
        return found == environment.end() ? std::string() : found->second;
    });
}

} // namespace

TEST(Languages, ThereAreNoneWithoutALocaleOrUnderC) {
    EXPECT_EQ(under({}), Names{});
    EXPECT_EQ(under({{"LANGUAGE", "fr"}}), Names{});
    for (const char* const locale : {"C", "POSIX", "C.UTF-8", "C.utf8"}) {
        EXPECT_EQ(under({{"LANG", locale}, {"LANGUAGE", "fr"}}), Names{}) << locale;
        EXPECT_EQ(under({{"LANG", "de_DE.UTF-8"}, {"LC_ALL", locale}}), Names{}) << locale;
        EXPECT_EQ(under({{"LANG", "de_DE.UTF-8"}, {"LC_MESSAGES", locale}}), Names{}) << locale;
    }
}

TEST(Languages, TheRegionComesFirstAndEnglishLast) {
    EXPECT_EQ(under({{"LANG", "de_AT.UTF-8@euro"}}), (Names{"de_AT", "de", "en"}));
    EXPECT_EQ(under({{"LANG", "nl"}}), (Names{"nl", "en"}));
    EXPECT_EQ(under({{"LANG", "en_GB.UTF-8"}}), (Names{"en_GB", "en"}));
}

TEST(Languages, TheFirstVariableThatIsSetDecides) {
    EXPECT_EQ(under({{"LANG", "nl"}, {"LC_MESSAGES", "fr"}}), (Names{"fr", "en"}));
    EXPECT_EQ(under({{"LANG", "nl"}, {"LC_MESSAGES", "fr"}, {"LC_ALL", "de"}}),
              (Names{"de", "en"}));
    EXPECT_EQ(under({{"LANG", "nl"}, {"LC_MESSAGES", "C"}, {"LC_ALL", "de"}}), (Names{"de", "en"}));
}

TEST(Languages, WishesStandBeforeTheLocale) {
    EXPECT_EQ(under({{"LANG", "nl_NL.UTF-8"}, {"LANGUAGE", "it:fr_FR:nl"}}),
              (Names{"it", "fr_FR", "fr", "nl", "nl_NL", "en"}));
    EXPECT_EQ(under({{"LANG", "nl"}, {"LANGUAGE", ":::"}}), (Names{"nl", "en"}));
    EXPECT_EQ(under({{"LANG", "nl"}, {"LANGUAGE", "fr:C:de"}}), Names{"fr"});
}

TEST(Languages, WhatIsNoNameLeadsNowhere) {
    EXPECT_EQ(under({{"LANG", "../../etc"}}), Names{"en"});
    EXPECT_EQ(under({{"LANG", "d/e"}, {"LANGUAGE", "\xFF:fr"}}), (Names{"fr", "en"}));
}
