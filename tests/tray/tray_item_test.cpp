// The status item as watchers and hosts see it.

#include "tests/tray/tray_stage.h"

#include <algorithm>
#include <csignal>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

struct TrayItemTest : TrayStage {
    const TrayContent open{"lock.open", brand::white, "Je bent in de buurt"};
    const TrayContent locked{"lock.fill", brand::white, "Gelockt"};

    std::vector<std::string> signals;
    Subscription listening;

    void listen(TrayHost& to) {
        for (const char* const name : {"NewIcon", "NewToolTip", "NewStatus", "NewTitle"})
            subscriptions.push_back(to.bus().onSignal(
                ownName(), {.interface = "org.kde.StatusNotifierItem", .member = name},
                [this, name](const dbus::Message&) { signals.push_back(name); }));
        subscriptions.push_back(to.bus().onSignal(ownName(),
                                                  {.interface = "org.freedesktop.DBus.Properties",
                                                   .member = "PropertiesChanged",
                                                   .path = TrayItem::path},
                                                  [this](const dbus::Message& message) {
                                                      auto reader = message.read();
                                                      static_cast<void>(reader.text());
                                                      reader.properties(
                                                          [](std::string_view, dbus::Reader&) {});
                                                      for (const std::string& name : reader.texts())
                                                          signals.push_back("changed " + name);
                                                  }));
        loop.settle();
    }
    std::vector<Subscription> subscriptions;
};

} // namespace

TEST_F(TrayItemTest, IsRegisteredByTheNameOfItsConnection) {
    const auto desktop = watcher();
    ASSERT_TRUE(loop.runUntil([this] { return item->isTaken().get(); }));
    EXPECT_EQ(registered, std::vector{ownName()});
}

TEST_F(TrayItemTest, IsThereBeforeItIsRegistered) {
    auto client = host();
    std::string category;
    const auto desktop = std::make_unique<LookAlike>(loop, watcherName);
    bool asked = false;
    desktop->on(registering, [&asked](LookAlike& self, sd_bus_message* call) {
        asked = true;
        self.reply(call);
    });
    ASSERT_TRUE(loop.runUntil([&asked] { return asked; }));
    EXPECT_EQ(client->text("Category"), "SystemServices");
}

TEST_F(TrayItemTest, IsRegisteredWithAWatcherThatComesLate) {
    loop.pass(1h);
    EXPECT_FALSE(item->isTaken().get());
    const auto desktop = watcher();
    ASSERT_TRUE(loop.runUntil([this] { return item->isTaken().get(); }));
    EXPECT_EQ(registered.size(), 1U);
}

TEST_F(TrayItemTest, IsRegisteredAgainEachTimeTheWatcherComesBack) {
    const auto desktop = watcher();
    for (std::size_t round = 1; round <= 3; ++round) {
        ASSERT_TRUE(loop.runUntil([this] { return item->isTaken().get(); }));
        EXPECT_EQ(registered.size(), round);
        desktop->vanish();
        ASSERT_TRUE(loop.runUntil([this] { return !item->isTaken().get(); }));
        desktop->appear();
    }
}

TEST_F(TrayItemTest, IsRegisteredOnceWithEachWatcher) {
    item.reset();
    const auto desktop = watcher();
    loop.settle();
    // It owns its name already, and the name is asked for while changes are listened to.
    item = std::make_unique<TrayItem>(session, loop.time, actions(), painter());
    ASSERT_TRUE(loop.runUntil([this] { return item->isTaken().get(); }));
    loop.pass(1min);
    EXPECT_EQ(registered.size(), 1U);
}

TEST_F(TrayItemTest, IsOfferedAgainToAWatcherThatRefusedIt) {
    auto desktop = std::make_unique<LookAlike>(loop, watcherName); // answers: unknown method
    ASSERT_TRUE(loop.runUntil([&] { return desktop->calls("RegisterStatusNotifierItem") == 1; }));
    loop.settle();
    EXPECT_FALSE(item->isTaken().get());
    loop.pass(TrayRegistration::retryInterval - 1ns);
    EXPECT_EQ(desktop->calls("RegisterStatusNotifierItem"), 1);
    desktop->on(registering, [](LookAlike& self, sd_bus_message* call) { self.reply(call); });
    loop.pass(1ns);
    ASSERT_TRUE(loop.runUntil([this] { return item->isTaken().get(); }));
    EXPECT_EQ(desktop->calls("RegisterStatusNotifierItem"), 2);
}

TEST_F(TrayItemTest, NobodyIsAskedAgainOnceTheWatcherHasGone) {
    auto desktop = std::make_unique<LookAlike>(loop, watcherName);
    ASSERT_TRUE(loop.runUntil([&] { return desktop->calls("RegisterStatusNotifierItem") == 1; }));
    loop.settle();
    desktop->vanish();
    loop.pass(1min);
    desktop->appear();
    ASSERT_TRUE(loop.runUntil([&] { return desktop->calls("RegisterStatusNotifierItem") == 2; }));
}

TEST_F(TrayItemTest, IsRegisteredAnewWithANewBus) {
    auto desktop = watcher();
    ASSERT_TRUE(loop.runUntil([this] { return item->isTaken().get(); }));
    desktop.reset();
    loop.daemon.stop();
    ASSERT_TRUE(loop.runUntil([this] { return session.bus().get() == nullptr; }));
    EXPECT_FALSE(item->isTaken().get());
    item->show(locked); // to nobody
    loop.daemon.start();
    loop.time.advance(dbus::Connection::retryInterval);
    desktop = watcher();
    ASSERT_TRUE(loop.runUntil([this] { return item->isTaken().get(); }));
    EXPECT_EQ(registered.back(), ownName());
}

TEST_F(TrayItemTest, SaysWhatItIs) {
    item->show(open);
    auto client = host();
    EXPECT_EQ(client->text("Category"), "SystemServices");
    EXPECT_EQ(client->text("Id"), "nl.wegslot.Wegslot");
    EXPECT_EQ(client->text("Title"), "Wegslot");
    EXPECT_EQ(client->text("Status"), "Active");
    for (const char* const empty : {"IconName", "IconThemePath", "OverlayIconName",
                                    "AttentionIconName", "AttentionMovieName"})
        EXPECT_EQ(client->text(empty), "") << empty;

    const Answer isMenu = client->property(TrayItem::path, TrayItem::interfaceName, "ItemIsMenu");
    int flag = 1;
    sd_bus_message_read_basic(isMenu.get(), 'b', &flag);
    EXPECT_EQ(flag, 0);
    const Answer menu = client->property(TrayItem::path, TrayItem::interfaceName, "Menu");
    const char* path = "";
    sd_bus_message_read_basic(menu.get(), 'o', static_cast<void*>(&path));
    EXPECT_STREQ(path, "/MenuBar");
}

TEST_F(TrayItemTest, ToolTipHasTheNameAndWhatThePhaseSays) {
    item->show(open);
    const Answer tip = host()->property(TrayItem::path, TrayItem::interfaceName, "ToolTip");
    const char* icon = nullptr;
    const char* title = nullptr;
    const char* text = nullptr;
    ASSERT_GT(sd_bus_message_enter_container(tip.get(), 'r', "sa(iiay)ss"), 0);
    sd_bus_message_read_basic(tip.get(), 's', static_cast<void*>(&icon));
    ASSERT_GT(sd_bus_message_skip(tip.get(), "a(iiay)"), 0);
    ASSERT_GT(sd_bus_message_read(tip.get(), "ss", &title, &text), 0);
    EXPECT_STREQ(icon, "");
    EXPECT_STREQ(title, "Wegslot");
    EXPECT_STREQ(text, "Je bent in de buurt");
}

TEST_F(TrayItemTest, PicturesComeInTheSizesOfBars) {
    item->show(open);
    const Answer list = host()->property(TrayItem::path, TrayItem::interfaceName, "IconPixmap");
    std::vector<int> sides;
    ASSERT_GT(sd_bus_message_enter_container(list.get(), 'a', "(iiay)"), 0);
    while (sd_bus_message_enter_container(list.get(), 'r', "iiay") > 0) {
        int width = 0;
        int height = 0;
        const void* bytes = nullptr;
        std::size_t size = 0;
        sd_bus_message_read(list.get(), "ii", &width, &height);
        sd_bus_message_read_array(list.get(), 'y', &bytes, &size);
        sd_bus_message_exit_container(list.get());
        EXPECT_EQ(width, height);
        ASSERT_EQ(size, static_cast<std::size_t>(width * width * 4));
        const auto* const first = static_cast<const std::uint8_t*>(bytes);
        EXPECT_EQ(std::vector(first, first + 4), (std::vector<std::uint8_t>{255, 9, 255, 7}));
        sides.push_back(width);
    }
    EXPECT_EQ(sides, std::vector(TrayItem::sides.begin(), TrayItem::sides.end()));
}

TEST_F(TrayItemTest, PicturesArePaintedWhenAskedForAndOnce) {
    auto client = host();
    item->show(open);
    item->show(locked);
    EXPECT_EQ(painted, 0);
    for (int i = 0; i < 3; ++i)
        client->property(TrayItem::path, TrayItem::interfaceName, "IconPixmap");
    EXPECT_EQ(painted, static_cast<int>(TrayItem::sides.size()));
    item->show(open);
    client->property(TrayItem::path, TrayItem::interfaceName, "IconPixmap");
    EXPECT_EQ(painted, 2 * static_cast<int>(TrayItem::sides.size()));
}

TEST_F(TrayItemTest, TellsOfWhatHasChangedAndOfNothingElse) {
    item->show(open);
    auto client = host();
    listen(*client);
    const auto told = [this](const TrayContent& content) {
        signals.clear();
        item->show(content);
        loop.settle();
        return signals;
    };
    using Names = std::vector<std::string>;
    EXPECT_EQ(told(open), Names{});
    EXPECT_EQ(told(locked),
              (Names{"NewIcon", "changed IconPixmap", "NewToolTip", "changed ToolTip"}));
    TrayContent content = locked;
    content.color = brand::navy;
    EXPECT_EQ(told(content), (Names{"NewIcon", "changed IconPixmap"}));
    content.text = "Anders";
    EXPECT_EQ(told(content), (Names{"NewToolTip", "changed ToolTip"}));
}

TEST_F(TrayItemTest, EveryKindOfClickOpensThePanelWhereItWas) {
    auto client = host();
    for (const char* const click : {"Activate", "SecondaryActivate", "ContextMenu"}) {
        done.clear();
        const Answer answer = client->item(
            click, [](sd_bus_message* call) { sd_bus_message_append(call, "ii", 1200, -4); });
        EXPECT_EQ(TrayHost::error(answer), "") << click;
        EXPECT_EQ(done, std::vector<std::string>{"open 1200,-4 "}) << click;
    }
    done.clear();
    client->item("Scroll",
                 [](sd_bus_message* call) { sd_bus_message_append(call, "is", 120, "vertical"); });
    EXPECT_EQ(done, std::vector<std::string>{});
}

TEST_F(TrayItemTest, ATokenServesTheNextClickAlone) {
    auto client = host();
    client->item("ProvideXdgActivationToken",
                 [](sd_bus_message* call) { sd_bus_message_append(call, "s", "abc"); });
    EXPECT_TRUE(done.empty());
    for (int i = 0; i < 2; ++i)
        client->item("Activate",
                     [](sd_bus_message* call) { sd_bus_message_append(call, "ii", 1, 2); });
    EXPECT_EQ(done, (std::vector<std::string>{"open 1,2 abc", "open 1,2 "}));
}

TEST_F(TrayItemTest, NonsenseIsAnErrorAndChangesNothing) {
    auto client = host();
    EXPECT_EQ(TrayHost::error(client->item("Explode")), "org.freedesktop.DBus.Error.UnknownMethod");
    EXPECT_EQ(TrayHost::error(client->item("Activate")), "org.freedesktop.DBus.Error.InvalidArgs");
    EXPECT_EQ(TrayHost::error(client->item(
                  "Activate",
                  [](sd_bus_message* call) { sd_bus_message_append(call, "ss", "hier", "daar"); })),
              "org.freedesktop.DBus.Error.InvalidArgs");
    EXPECT_EQ(TrayHost::error(client->ask("/Elders", TrayItem::interfaceName, "Activate")),
              "org.freedesktop.DBus.Error.UnknownObject");
    EXPECT_EQ(TrayHost::error(client->property(TrayItem::path, TrayItem::interfaceName, "Mood")),
              "org.freedesktop.DBus.Error.UnknownProperty");
    EXPECT_TRUE(done.empty());
    EXPECT_EQ(client->text("Title"), "Wegslot");
}

TEST_F(TrayItemTest, MayEndFromWithinAClick) {
    item.reset();
    item = std::make_unique<TrayItem>(
        session, loop.time,
        TrayActions{.open = [this](const TrayClick&) { item.reset(); }, .lock = {}, .quit = {}},
        painter());
    auto client = host();
    const Answer answer = client->item(
        "Activate", [](sd_bus_message* call) { sd_bus_message_append(call, "ii", 1, 2); });
    EXPECT_EQ(TrayHost::error(answer), "");
    EXPECT_EQ(item, nullptr);
    EXPECT_EQ(TrayHost::error(client->item("Scroll")), "org.freedesktop.DBus.Error.UnknownObject");
}
