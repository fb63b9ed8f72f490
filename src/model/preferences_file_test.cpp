#include "model/preferences_file.h"

#include "base/virtual_time.h"
#include "model/settings.h"
#include "tests/support/captured_log.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/world.h"

#include <gtest/gtest.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct PreferencesFileTest : testing::Test {
    TemporaryFolder folder;
    CapturedLog log;
    VirtualTime time{TimePoint{1000h}};
    const std::filesystem::path file = folder.path() / "wegslot" / "preferences.json";

    void put(const std::string& content) const {
        std::filesystem::create_directory(file.parent_path());
        folder.write("wegslot/preferences.json", content);
    }
    [[nodiscard]] std::string content() const { return folder.read("wegslot/preferences.json"); }
};

} // namespace

TEST_F(PreferencesFileTest, WhatWasWrittenIsReadAgain) {
    {
        PreferencesFile store(file, time);
        store.write("enabled", false);
        store.write("awayDelay", 7.5);
        store.write("rule", std::string("anyAway"));
        store.write("keys", Data{R"([{"name":"Zoë"}])"});
    }
    const PreferencesFile store(file, time);
    EXPECT_EQ(store.values(), (Preferences{{"enabled", false},
                                           {"awayDelay", 7.5},
                                           {"rule", std::string("anyAway")},
                                           {"keys", Data{R"([{"name":"Zoë"}])"}}}));
}

TEST_F(PreferencesFileTest, OnlyItsUserMayReadIt) {
    {
        PreferencesFile store(file, time);
        store.write("enabled", false);
    }
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(file).permissions(), perms::owner_read | perms::owner_write);
    EXPECT_EQ(std::filesystem::status(file.parent_path()).permissions(), perms::owner_all);
}

TEST_F(PreferencesFileTest, ChangesOfOneTurnAreWrittenOnceAtItsEnd) {
    PreferencesFile store(file, time);
    for (int value = 0; value < 100; ++value)
        store.write("awayDelay", 1.0 * value);
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_EQ(time.pending(), 1U);
    time.advance(0s);
    EXPECT_EQ(content(), "{\n  \"awayDelay\": 99.0\n}\n");
    EXPECT_EQ(time.pending(), 0U);
}

TEST_F(PreferencesFileTest, NoOtherFileStaysBehind) {
    PreferencesFile store(file, time);
    store.write("enabled", false);
    store.flush();
    const std::filesystem::directory_iterator entries(file.parent_path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

TEST_F(PreferencesFileTest, ADamagedFileLoadsAsDefaultsAndIsKeptBeside) {
    for (const auto* const name : {"preferences.json.damaged", "preferences.json.damaged.1"}) {
        put("{\"enabled\": fal");
        PreferencesFile store(file, time);
        const Settings settings(store);
        EXPECT_TRUE(settings.enabled.get());
        EXPECT_FALSE(std::filesystem::exists(file));
        EXPECT_EQ(folder.read("wegslot/" + std::string(name)), "{\"enabled\": fal");
        EXPECT_EQ(log.take(), std::vector{"Voorkeuren onleesbaar, bewaard als " +
                                          (file.parent_path() / name).string()});
    }
}

TEST_F(PreferencesFileTest, WhatIsNoObjectIsDamagedAndAnEmptyFileIsNot) {
    put("[1,2]");
    const PreferencesFile damaged(file, time);
    EXPECT_TRUE(std::filesystem::exists(file.string() + ".damaged"));
    put("");
    const PreferencesFile empty(file, time);
    EXPECT_TRUE(std::filesystem::exists(file));
}

TEST_F(PreferencesFileTest, AFileThatCannotBeReadIsNeverWrittenOver) {
    std::filesystem::create_directories(file); // a folder in its place: unreadable, also for root
    {
        PreferencesFile store(file, time);
        store.write("enabled", false);
    }
    EXPECT_TRUE(std::filesystem::is_directory(file));
    EXPECT_EQ(
        log.take(),
        std::vector{"Voorkeuren niet leesbaar, wijzigingen worden niet bewaard: " + file.string()});
}

TEST_F(PreferencesFileTest, AFailedWriteIsLoggedAndTheNextChangeTriesAgain) {
    put("{}");
    PreferencesFile store(file, time);
    std::filesystem::remove_all(file.parent_path());
    folder.write("wegslot", "in the way");
    store.write("enabled", false);
    store.flush();
    ASSERT_EQ(log.messages.size(), 1U);
    EXPECT_TRUE(log.messages[0].starts_with("Voorkeuren niet bewaard: " + file.string() + ": "));
    std::filesystem::remove(file.parent_path());
    store.write("enabled", false);
    store.flush();
    EXPECT_EQ(content(), "{\n  \"enabled\": false\n}\n");
}

TEST_F(PreferencesFileTest, NamesThatNobodyKnowsAreKept) {
    put(R"({"lockCommand": ["swaylock", "-f"], "later": 5})");
    {
        PreferencesFile store(file, time);
        store.write("enabled", false);
    }
    const PreferencesFile store(file, time);
    EXPECT_EQ(store.data("lockCommand"), Data{R"(["swaylock","-f"])"});
    EXPECT_EQ(store.number("later"), 5.0);
}

TEST_F(PreferencesFileTest, KeysAreStoredAsReadableRecords) {
    {
        PreferencesFile store(file, time);
        Settings settings(store);
        settings.addKey({.id = numbered(1), .rssi = Dbm{-60}, .name = "Telefoon"});
    }
    EXPECT_NE(content().find("\"name\": \"Telefoon\""), std::string::npos);
    PreferencesFile store(file, time);
    EXPECT_EQ(Settings(store).keys.get().at(0).threshold, Dbm{-75});
}

TEST_F(PreferencesFileTest, LivesInTheFolderForConfiguration) {
    EXPECT_EQ(PreferencesFile::pathUnder("/home/anna/.config"),
              "/home/anna/.config/wegslot/preferences.json");
}
