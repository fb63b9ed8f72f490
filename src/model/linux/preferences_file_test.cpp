#include "model/linux/preferences_file.h"

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

TEST_F(PreferencesFileTest, NoOtherFileThanItsCopyStaysBehind) {
    PreferencesFile store(file, time);
    store.write("enabled", false);
    EXPECT_EQ(store.flush(), std::nullopt);
    const std::filesystem::directory_iterator entries(file.parent_path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 2);
    EXPECT_EQ(folder.read("wegslot/preferences.json.good"), content());
}

TEST_F(PreferencesFileTest, AMistypedFileIsLeftAndTheLastGoodOneCountsUntilItIsMended) {
    put("{\n  \"awayDelay\": 9\n}\n");
    { const PreferencesFile good(file, time); }
    const std::string mistyped = "{\n  \"awayDelay\": 8,\n}\n";
    put(mistyped);
    PreferencesFile store(file, time);
    Settings settings(store);
    const std::string fault = "Voorkeuren onleesbaar: " + file.string() +
                              ": regel 3, kolom 1; tot dat hersteld is gelden de vorige en wordt "
                              "niets bewaard";
    EXPECT_EQ(log.take(), std::vector{fault});
    EXPECT_EQ(store.fault().get(), Failure{fault});
    EXPECT_EQ(settings.awayDelay.get(), 9s);

    settings.enabled.set(false);
    EXPECT_EQ(store.flush(), Failure{fault});
    EXPECT_EQ(content(), mistyped);
    put("{\n  \"awayDelay\": 8\n}\n");
    store.reread();
    EXPECT_EQ(store.fault().get(), std::nullopt);
    EXPECT_EQ(settings.awayDelay.get(), 8s);
    time.advance(0s); // what was changed meanwhile is written now
    EXPECT_EQ(content(), "{\n  \"awayDelay\": 8.0,\n  \"enabled\": false\n}\n");
}

TEST_F(PreferencesFileTest, AMistypedFileWithoutACopyIsLeftToo) {
    for (const auto* const wrong : {"{\"enabled\": fal", "[1,2]", "{\"awayDelay\": 1e999}"}) {
        put(wrong);
        {
            PreferencesFile store(file, time);
            Settings settings(store);
            EXPECT_TRUE(store.fault().get()) << wrong;
            EXPECT_TRUE(settings.enabled.get());
            settings.enabled.set(false);
        }
        EXPECT_EQ(content(), wrong);
    }
}

TEST_F(PreferencesFileTest, NestingHasABound) {
    const auto nested = [](std::size_t depth) {
        return "{\"x\":" + std::string(depth - 1, '[') + std::string(depth - 1, ']') + "}";
    };
    put(nested(PreferencesFile::deepest));
    EXPECT_FALSE(PreferencesFile(file, time).fault().get());
    put(nested(PreferencesFile::deepest + 1));
    EXPECT_TRUE(PreferencesFile(file, time).fault().get());
    put("{\"x\":" + std::string(80'000, '[') + std::string(80'000, ']') + "}");
    EXPECT_TRUE(PreferencesFile(file, time).fault().get());
    put("{\"x\": \"" + std::string(100, '[') + "\\\"\"}"); // a text may hold what it likes
    EXPECT_FALSE(PreferencesFile(file, time).fault().get());
}

TEST_F(PreferencesFileTest, WhatOthersChangeIsTakenAndOursStaysWhereBothDid) {
    put(R"({"awayDelay": 5, "lostTimeout": 15, "warningSeconds": 5, "later": 1})");
    PreferencesFile store(file, time);
    Settings settings(store);
    int told = 0;
    const auto following = settings.awayDelay.onChange([&told](Seconds) { ++told; });
    settings.lostTimeout.set(20s);
    put(R"({"awayDelay": 7, "lostTimeout": 30, "enabled": false})");
    time.advance(0s); // our change is written, over what the file holds by now
    EXPECT_EQ(settings.awayDelay.get(), 7s);
    EXPECT_EQ(told, 1);
    EXPECT_EQ(settings.lostTimeout.get(), 20s);
    EXPECT_FALSE(settings.enabled.get());
    EXPECT_EQ(content(), "{\n  \"awayDelay\": 7.0,\n  \"enabled\": false,\n"
                         "  \"lostTimeout\": 20.0\n}\n");
    store.reread(); // our own writing is no change
    EXPECT_EQ(told, 1);
    put(R"({"awayDelay": 7, "enabled": false})"); // written by then, so the other one counts
    store.reread();
    EXPECT_EQ(settings.lostTimeout.get(), 15s);
}

TEST_F(PreferencesFileTest, AFileThatIsEmptiedOrDeletedChangesNoSetting) {
    put(R"({"awayDelay": 7})");
    PreferencesFile store(file, time);
    const Settings settings(store);
    put("");
    store.reread();
    std::filesystem::remove(file);
    store.reread();
    EXPECT_EQ(settings.awayDelay.get(), 7s);
    EXPECT_EQ(store.fault().get(), std::nullopt);
}

TEST_F(PreferencesFileTest, WhoOnlyReadsChangesNothing) {
    put("{");
    {
        PreferencesFile store(file, time, PreferencesFile::Access::readOnly);
        store.write("enabled", false);
    }
    EXPECT_EQ(content(), "{");
    put("{}");
    { const PreferencesFile store(file, time, PreferencesFile::Access::readOnly); }
    const std::filesystem::directory_iterator entries(file.parent_path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

TEST_F(PreferencesFileTest, AFileThatCannotBeReadIsNeverWrittenOver) {
    std::filesystem::create_directories(file); // a folder in its place: unreadable, also for root
    {
        PreferencesFile store(file, time);
        store.write("enabled", false);
        EXPECT_TRUE(store.flush());
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
    const auto failure = store.flush();
    ASSERT_TRUE(failure);
    EXPECT_TRUE(
        failure->message.builtIn().starts_with("Voorkeuren niet bewaard: " + file.string() + ": "));
    EXPECT_EQ(log.take(), std::vector{failure->message.builtIn()});
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
