#include "base/catalogue.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>

using namespace wegslot;

namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

/// A file as msgfmt writes it, of pairs that are in order.
std::string compiled(const Pairs& pairs) {
    std::string head;
    std::string texts;
    const auto word = [&head](std::size_t value) {
        const auto number = static_cast<std::uint32_t>(value);
        head.append(reinterpret_cast<const char*>(&number), sizeof number);
    };
    constexpr std::size_t headSize = 28;
    for (const std::size_t value : {std::size_t{0x950412DE}, std::size_t{0}, pairs.size(), headSize,
                                    headSize + 8 * pairs.size(), std::size_t{0}, std::size_t{0}})
        word(value);
    const std::size_t textsAt = headSize + 16 * pairs.size();
    const auto add = [&](const std::string& text) {
        word(text.size());
        word(textsAt + texts.size());
        texts += text + '\0';
    };
    for (const auto& [original, translation] : pairs)
        add(original);
    for (const auto& [original, translation] : pairs)
        add(translation);
    return head + texts;
}

const std::string french =
    compiled({{"", "Content-Type: text/plain\nPlural-Forms: nplurals=2; plural=n > 1;\n"},
              {std::string("%1 dag\0%1 dagen", 15), std::string("%1 jour\0%1 jours", 16)},
              {"Nu locken", "Verrouiller"}});

} // namespace

TEST(Catalogue, KnowsItsTexts) {
    const auto catalogue = Catalogue::read(french);
    ASSERT_TRUE(catalogue);
    EXPECT_EQ(catalogue->find("Nu locken"), "Verrouiller");
    EXPECT_EQ(catalogue->find("Nu lockeN"), std::nullopt);
    EXPECT_EQ(catalogue->find(""), std::nullopt);
}

TEST(Catalogue, CountsAsItsLanguageDoes) {
    const auto catalogue = Catalogue::read(french);
    ASSERT_TRUE(catalogue);
    EXPECT_EQ(catalogue->find("%1 dag", 0), "%1 jour");
    EXPECT_EQ(catalogue->find("%1 dag", 1), "%1 jour");
    EXPECT_EQ(catalogue->find("%1 dag", 2), "%1 jours");
    EXPECT_EQ(catalogue->find("%1 uur", 2), std::nullopt);
}

TEST(Catalogue, ARuleThatNamesAFormThatIsNotThereIsNoTranslation) {
    const auto catalogue =
        Catalogue::read(compiled({{"", "Plural-Forms: nplurals=2; plural=n;\n"},
                                  {std::string("dag\0dagen", 9), std::string("day\0days", 8)}}));
    ASSERT_TRUE(catalogue);
    EXPECT_EQ(catalogue->find("dag", 1), "days");
    EXPECT_EQ(catalogue->find("dag", 2), std::nullopt);
}

TEST(Catalogue, OneThatIsCutAnywhereIsRefusedOrWhole) {
    for (std::size_t length = 0; length < french.size(); ++length) {
        const auto catalogue = Catalogue::read(std::string_view(french).substr(0, length));
        if (!catalogue) continue;
        EXPECT_EQ(length, french.size() - 1); // without the last text's end, which is not needed
    }
    EXPECT_FALSE(Catalogue::read("msgid \"\""));
}

TEST(Catalogue, OneThatPointsOutsideItselfIsRefused) {
    for (std::size_t at = 8; at < 60; ++at) {
        std::string damaged = french;
        damaged[at] = '\xFF';
        static_cast<void>(Catalogue::read(damaged)); // for the sanitizers
    }
}

TEST(PluralRule, IsReadAsC) {
    EXPECT_EQ(evaluated("n != 1", 1), 0);
    EXPECT_EQ(evaluated("n!=1", 0), 1);
    EXPECT_EQ(evaluated("0", 7), 0);
    const char* const polish = "n==1 ? 0 : n%10>=2 && n%10<=4 && (n%100<10 || n%100>=20) ? 1 : 2";
    EXPECT_EQ(evaluated(polish, 1), 0);
    EXPECT_EQ(evaluated(polish, 22), 1);
    EXPECT_EQ(evaluated(polish, 12), 2);
    EXPECT_EQ(evaluated(polish, 5), 2);
    EXPECT_EQ(evaluated("1 + 2 * 3 - 4 / 2 - !0", 0), 4);
    EXPECT_EQ(evaluated("2 - 1 - 1", 0), 0);
}

TEST(PluralRule, WhatIsNoExpressionHasNoValue) {
    for (const char* const rule :
         {"", "n n", "(n", "n)", "n ?", "n ? 1", "n ==", "1 / (n - n)", "n % 0", "m", "n = 1"})
        EXPECT_EQ(evaluated(rule, 3), std::nullopt) << rule;
    EXPECT_EQ(evaluated(std::string(100'000, '('), 1), std::nullopt);
    EXPECT_EQ(evaluated(std::string(100'000, '!') + "n", 1), std::nullopt);
    std::string choices;
    for (int i = 0; i < 1'000'000; ++i)
        choices += "0?1:";
    EXPECT_EQ(evaluated(choices + "1", 1), std::nullopt);
}
