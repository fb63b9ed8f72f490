// The menu of the status item, asked as desktops ask.

#include "tests/support/captured_log.h"
#include "tests/tray/tray_stage.h"

#include <filesystem>

using namespace wegslot;

namespace {

struct TrayMenuTest : TrayStage {
    void SetUp() override {
        TrayStage::SetUp();
        client = host();
    }

    /// "id:name=value children" of an item and what is below it.
    static std::string described(sd_bus_message* message) {
        int id = -1;
        std::string text;
        sd_bus_message_enter_container(message, 'r', "ia{sv}av");
        sd_bus_message_read_basic(message, 'i', &id);
        text += std::to_string(id) + ":" + properties(message);
        sd_bus_message_enter_container(message, 'a', "v");
        while (sd_bus_message_enter_container(message, 'v', "(ia{sv}av)") > 0) {
            text += " [" + described(message) + "]";
            sd_bus_message_exit_container(message);
        }
        sd_bus_message_exit_container(message);
        sd_bus_message_exit_container(message);
        return text;
    }
    static std::string properties(sd_bus_message* message) {
        std::string text;
        sd_bus_message_enter_container(message, 'a', "{sv}");
        while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
            const char* name = "";
            const char* value = "";
            sd_bus_message_read(message, "sv", &name, "s", &value);
            text += std::string(name) + "=" + value;
            sd_bus_message_exit_container(message);
        }
        sd_bus_message_exit_container(message);
        return text;
    }
    std::string layout(int parent, int depth, const char* property = nullptr) {
        const Answer answer = client->menu("GetLayout", [&](sd_bus_message* call) {
            sd_bus_message_append(call, "ii", parent, depth);
            sd_bus_message_append(call, "as", property == nullptr ? 0 : 1, property);
        });
        if (auto error = TrayHost::error(answer); !error.empty()) return error;
        sd_bus_message_read_basic(answer.get(), 'u', &revision);
        return described(answer.get());
    }
    std::string event(int id, const char* what) {
        return TrayHost::error(client->menu("Event", [&](sd_bus_message* call) {
            sd_bus_message_append(call, "isvu", id, what, "i", 0, 1234U);
        }));
    }
    using Events = std::vector<std::pair<int, const char*>>;
    Answer eventGroup(const Events& events) {
        return client->menu("EventGroup", [&events](sd_bus_message* call) {
            sd_bus_message_open_container(call, 'a', "(isvu)");
            for (const auto& [id, what] : events)
                sd_bus_message_append(call, "(isvu)", id, what, "s", "", 0U);
            sd_bus_message_close_container(call);
        });
    }
    static std::vector<int> integers(const Answer& answer) {
        std::vector<int> list;
        sd_bus_message_enter_container(answer.get(), 'a', "i");
        for (int id = 0; sd_bus_message_read_basic(answer.get(), 'i', &id) > 0;)
            list.push_back(id);
        sd_bus_message_exit_container(answer.get());
        return list;
    }

    static constexpr auto invalid = "org.freedesktop.DBus.Error.InvalidArgs";
    using Texts = std::vector<std::string>;
    const TrayContent near{"lock.open", brand::white, "Je bent in de buurt"};
    const TrayContent paused{"pause.circle", brand::white, "Gepauzeerd tot 14:30", true};
    std::uint32_t revision = 0; ///< of the layout that was read last
    std::unique_ptr<TrayHost> client;
};

} // namespace

TEST_F(TrayMenuTest, HasItsEntries) {
    const std::string whole = "0:children-display=submenu [1:label=Open Wegslot] "
                              "[2:label=Nu locken] [4:label=Pauzeer 15 minuten] "
                              "[5:label=Pauzeer 1 uur] [6:label=Pauzeer tot 06:00] "
                              "[7:label=Apparaat koppelen] [8:label=Inzicht] [9:label=Stop]";
    EXPECT_EQ(layout(0, -1), whole);
    EXPECT_EQ(layout(0, 1), whole);
}

TEST_F(TrayMenuTest, APauseCanBeEndedThereAndTheDesktopIsToldToReadTheMenuAnew) {
    std::vector<std::uint32_t> told;
    const auto listening = client->bus().onSignal(
        ownName(),
        {.interface = TrayMenu::interfaceName, .member = "LayoutUpdated", .path = TrayMenu::path},
        [&told](const dbus::Message& signal) {
            told.push_back(static_cast<std::uint32_t>(signal.read().integer().value_or(0)));
        });
    loop.settle();
    const std::string before = layout(0, -1);
    EXPECT_EQ(revision, 1U);
    item->show(paused);
    item->show(paused);
    loop.settle();
    EXPECT_EQ(told, std::vector{2U});
    EXPECT_EQ(layout(0, -1, "label"),
              "0: [1:label=Open Wegslot] [2:label=Nu locken] [3:label=Hervat] "
              "[4:label=Pauzeer 15 minuten] [5:label=Pauzeer 1 uur] [6:label=Pauzeer tot 06:00] "
              "[7:label=Apparaat koppelen] [8:label=Inzicht] [9:label=Stop]");
    EXPECT_EQ(revision, 2U);
    EXPECT_EQ(event(3, "clicked"), "");
    item->show(near);
    loop.settle();
    EXPECT_EQ(told, (std::vector{2U, 3U}));
    EXPECT_EQ(layout(0, -1), before);
    EXPECT_EQ(done, Texts{"resume"});
}

TEST_F(TrayMenuTest, AClickHitsWhatWasReadThoughTheMenuIsAnotherByThen) {
    item->show(paused);
    layout(0, -1);
    item->show(near);
    for (const int id : {3, 4, 5, 6, 7, 8, 9})
        EXPECT_EQ(event(id, "clicked"), "") << id;
    EXPECT_EQ(done, (Texts{"resume", "pause 900", "pause 3600", "pause until morning", "couple",
                           "insight", "quit"}));
}

TEST_F(TrayMenuTest, GivesAsMuchAsIsAskedFor) {
    EXPECT_EQ(layout(0, 0), "0:children-display=submenu");
    EXPECT_EQ(layout(2, -1), "2:label=Nu locken");
    EXPECT_EQ(layout(0, -1, "label"),
              "0: [1:label=Open Wegslot] [2:label=Nu locken] [4:label=Pauzeer 15 minuten] "
              "[5:label=Pauzeer 1 uur] [6:label=Pauzeer tot 06:00] [7:label=Apparaat koppelen] "
              "[8:label=Inzicht] [9:label=Stop]");
    EXPECT_EQ(layout(0, -1, "icon-data"), "0: [1:] [2:] [4:] [5:] [6:] [7:] [8:] [9:]");
    for (const int unknown : {-1, 10, 1000000})
        EXPECT_EQ(layout(unknown, -1), invalid) << unknown;
}

TEST_F(TrayMenuTest, EachEntryActsOncePerClick) {
    EXPECT_EQ(event(1, "clicked"), "");
    EXPECT_EQ(event(2, "clicked"), "");
    EXPECT_EQ(event(9, "clicked"), "");
    EXPECT_EQ(event(2, "clicked"), "");
    EXPECT_EQ(done, (Texts{"open menu ", "lock", "quit", "lock"}));
}

TEST_F(TrayMenuTest, EachClickIsLoggedWithWhoMadeIt) {
    const CapturedLog log;
    event(9, "clicked");
    event(9, "hovered");
    eventGroup({{2, "clicked"}, {10, "clicked"}});
    const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
    const std::string who = " gekozen in het menu van het icoon, gevraagd door bus_tests (" + self;
    ASSERT_EQ(log.messages.size(), 2U);
    EXPECT_TRUE(log.messages[0].starts_with("\"Stop\"" + who)) << log.messages[0];
    EXPECT_TRUE(log.messages[1].starts_with("\"Nu locken\"" + who)) << log.messages[1];
}

TEST_F(TrayMenuTest, OnlyClicksAct) {
    for (const char* const what : {"hovered", "opened", "closed", "", "Clicked"})
        for (const int id : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9})
            EXPECT_EQ(event(id, what), "") << what;
    EXPECT_EQ(event(0, "clicked"), "");
    EXPECT_EQ(done, Texts{});
}

TEST_F(TrayMenuTest, UnknownEntriesAreAnError) {
    for (const int unknown : {-1, 10, 2147483647})
        EXPECT_EQ(event(unknown, "clicked"), invalid) << unknown;
    EXPECT_EQ(TrayHost::error(client->menu("Event")), invalid);
    EXPECT_EQ(TrayHost::error(client->menu("Dance")), "org.freedesktop.DBus.Error.UnknownMethod");
    EXPECT_EQ(done, Texts{});
}

TEST_F(TrayMenuTest, ClicksInAGroupActInTheirOrder) {
    const Answer answer =
        eventGroup({{1, "hovered"}, {2, "clicked"}, {10, "clicked"}, {1, "clicked"}});
    EXPECT_EQ(TrayHost::error(answer), "");
    EXPECT_EQ(integers(answer), std::vector{10});
    EXPECT_EQ(done, (Texts{"lock", "open menu "}));
}

TEST_F(TrayMenuTest, AGroupOfUnknownEntriesIsAnErrorAndAnEmptyOneIsNot) {
    EXPECT_EQ(TrayHost::error(eventGroup({{10, "clicked"}, {-3, "clicked"}})), invalid);
    EXPECT_EQ(integers(eventGroup({})), std::vector<int>{});
    EXPECT_EQ(done, Texts{});
}

TEST_F(TrayMenuTest, NothingIsToBeReadAgainBeforeItShows) {
    const Answer answer = client->menu(
        "AboutToShow", [](sd_bus_message* call) { sd_bus_message_append(call, "i", 0); });
    int again = 1;
    sd_bus_message_read_basic(answer.get(), 'b', &again);
    EXPECT_EQ(again, 0);
    EXPECT_EQ(
        TrayHost::error(client->menu(
            "AboutToShow", [](sd_bus_message* call) { sd_bus_message_append(call, "i", 10); })),
        invalid);

    const Answer group = client->menu("AboutToShowGroup", [](sd_bus_message* call) {
        sd_bus_message_append(call, "ai", 3, 0, 10, 2);
    });
    EXPECT_EQ(integers(group), std::vector<int>{});
    EXPECT_EQ(integers(group), std::vector{10});
    EXPECT_EQ(TrayHost::error(client->menu(
                  "AboutToShowGroup",
                  [](sd_bus_message* call) { sd_bus_message_append(call, "ai", 1, 10); })),
              invalid);
}

TEST_F(TrayMenuTest, PropertiesAreGivenInGroupsAndAlone) {
    const auto group = [this](const std::vector<int>& ids) {
        const Answer answer = client->menu("GetGroupProperties", [&ids](sd_bus_message* call) {
            sd_bus_message_append_array(call, 'i', ids.data(), ids.size() * sizeof(int));
            sd_bus_message_append(call, "as", 0);
        });
        std::string text;
        sd_bus_message_enter_container(answer.get(), 'a', "(ia{sv})");
        while (sd_bus_message_enter_container(answer.get(), 'r', "ia{sv}") > 0) {
            int id = -1;
            sd_bus_message_read_basic(answer.get(), 'i', &id);
            text += std::to_string(id) + ":" + properties(answer.get()) + ";";
            sd_bus_message_exit_container(answer.get());
        }
        return text;
    };
    EXPECT_EQ(group({7, 8, 9, 1}),
              "7:label=Apparaat koppelen;8:label=Inzicht;9:label=Stop;1:label=Open Wegslot;");
    EXPECT_EQ(group({}),
              "0:children-display=submenu;1:label=Open Wegslot;2:label=Nu locken;"
              "4:label=Pauzeer 15 minuten;5:label=Pauzeer 1 uur;"
              "6:label=Pauzeer tot 06:00;7:label=Apparaat koppelen;8:label=Inzicht;9:label=Stop;");

    const auto alone = [this](int id, const char* name) {
        const Answer answer = client->menu("GetProperty", [&](sd_bus_message* call) {
            sd_bus_message_append(call, "is", id, name);
        });
        const char* text = nullptr;
        int flag = 0;
        if (sd_bus_message_read(answer.get(), "v", "s", &text) > 0) return std::string(text);
        if (sd_bus_message_read(answer.get(), "v", "b", &flag) > 0) return std::to_string(flag);
        return TrayHost::error(answer);
    };
    EXPECT_EQ(alone(2, "label"), "Nu locken");
    EXPECT_EQ(alone(2, "enabled"), "1");
    EXPECT_EQ(alone(2, "visible"), "1");
    EXPECT_EQ(alone(3, "visible"), "0");
    EXPECT_EQ(alone(2, "mood"), invalid);
    EXPECT_EQ(alone(10, "label"), invalid);
}

TEST_F(TrayMenuTest, SaysWhichFormItHas) {
    const char* text = "";
    std::uint32_t version = 0;
    const auto property = [this](const char* name) {
        return client->property(TrayMenu::path, "com.canonical.dbusmenu", name);
    };
    sd_bus_message_read_basic(property("Version").get(), 'u', &version);
    EXPECT_EQ(version, 3U);
    const Answer status = property("Status");
    sd_bus_message_read_basic(status.get(), 's', static_cast<void*>(&text));
    EXPECT_STREQ(text, "normal");
    const Answer direction = property("TextDirection");
    sd_bus_message_read_basic(direction.get(), 's', static_cast<void*>(&text));
    EXPECT_STREQ(text, "ltr");
    EXPECT_GT(sd_bus_message_enter_container(property("IconThemePath").get(), 'a', "s"), 0);
}
