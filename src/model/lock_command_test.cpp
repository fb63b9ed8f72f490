#include "model/lock_command.h"

#include <gtest/gtest.h>

using namespace wegslot;

namespace {

using Words = std::vector<std::string>;

Result<Words> read(PreferenceValue value) {
    return lockCommand(MemoryStore(Preferences{{"lockCommand", std::move(value)}}));
}

} // namespace

TEST(LockCommand, IsAListOfWords) {
    const auto words = read(Data{R"(["swaylock", "-c", "000000", ""])"});
    ASSERT_TRUE(words);
    EXPECT_EQ(*words, (Words{"swaylock", "-c", "000000", ""}));
}

TEST(LockCommand, NoneOrAnEmptyListIsNone) {
    const auto absent = lockCommand(MemoryStore());
    ASSERT_TRUE(absent);
    EXPECT_EQ(*absent, Words{});
    const auto empty = read(Data{"[]"});
    ASSERT_TRUE(empty);
    EXPECT_EQ(*empty, Words{});
}

TEST(LockCommand, AnythingElseIsSaidToBeWrong) {
    for (const PreferenceValue& value :
         {PreferenceValue{std::string("swaylock -c 000000")}, PreferenceValue{true},
          PreferenceValue{3.0}, PreferenceValue{Data{R"({"program": "swaylock"})"}},
          PreferenceValue{Data{R"(["swaylock", 3])"}}, PreferenceValue{Data{R"([""])"}},
          PreferenceValue{Data{R"(["sway\u0000lock"])"}}}) {
        const auto words = read(value);
        ASSERT_FALSE(words);
        EXPECT_EQ(words.failure().message,
                  "lockCommand in de voorkeuren is geen lijst van woorden");
    }
}
