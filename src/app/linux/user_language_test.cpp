#include "app/linux/user_language.h"

#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <cstdint>

using namespace wegslot;

namespace {

namespace fs = std::filesystem;

/// A compiled catalogue with one text: "Nu locken".
std::string catalogue(const std::string& translation) {
    const std::string original = "Nu locken";
    std::string bytes;
    const auto word = [&bytes](std::size_t value) {
        const auto number = static_cast<std::uint32_t>(value);
        bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
    };
    for (const std::size_t value :
         {std::size_t{0x950412DE}, std::size_t{0}, std::size_t{1}, std::size_t{28}, std::size_t{36},
          std::size_t{0}, std::size_t{0}, original.size(), std::size_t{44}, translation.size(),
          44 + original.size() + 1})
        word(value);
    return bytes + original + '\0' + translation + '\0';
}

struct UserLanguageTest : testing::Test {
    TemporaryFolder folder;

    void SetUp() override {
        write("usr/bin/wegslot", "");
        put("en", "Lock now");
        put("de", "Jetzt sperren");
    }
    void put(const std::string& language, const std::string& translation) const {
        write("usr/share/locale/" + language + "/LC_MESSAGES/wegslot.mo", catalogue(translation));
    }
    void write(const std::string& name, const std::string& content) const {
        fs::create_directories((folder.path() / name).parent_path());
        folder.write(name, content);
    }
    /// How the text reads for who has that locale.
    [[nodiscard]] std::string under(const std::string& locale,
                                    const std::string& program = "usr/bin/wegslot") const {
        const UserLanguage language(
            [&locale](const char* name) {
                return std::string(name) == "LANG" ? locale : std::string();
            },
            folder.path() / program);
        return translated("Nu locken");
    }
};

} // namespace

TEST_F(UserLanguageTest, IsThatOfTheCatalogueUnderTheProgramsPrefix) {
    EXPECT_EQ(under("de_AT.UTF-8"), "Jetzt sperren");
    EXPECT_EQ(under("en_US.UTF-8"), "Lock now");
    EXPECT_EQ(translated("Nu locken"), "Nu locken"); // it ends with the object
}

TEST_F(UserLanguageTest, OneWithoutACatalogueGetsEnglish) {
    EXPECT_EQ(under("it_IT.UTF-8"), "Lock now");
}

TEST_F(UserLanguageTest, UnderCTextsStayAsTheyAre) {
    EXPECT_EQ(under("C.UTF-8"), "Nu locken");
    EXPECT_EQ(under(""), "Nu locken");
}

TEST_F(UserLanguageTest, AFolderThatIsInstalledWholeHasItsOwn) {
    write("Wegslot.app/wegslot", "");
    EXPECT_EQ(under("de_DE.UTF-8", "Wegslot.app/wegslot"), "Nu locken");
    write("Wegslot.app/share/locale/de/LC_MESSAGES/wegslot.mo", catalogue("Sperren"));
    EXPECT_EQ(under("de_DE.UTF-8", "Wegslot.app/wegslot"), "Sperren");
}

TEST_F(UserLanguageTest, OneThatIsDamagedIsPassedOver) {
    write("usr/share/locale/de/LC_MESSAGES/wegslot.mo", "niets");
    EXPECT_EQ(under("de_DE.UTF-8"), "Lock now");
}
