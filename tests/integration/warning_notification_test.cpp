// The warning as a notification, to a desktop that answers late, badly or not at all.

#include "hud/linux/warning_notification.h"

#include "hud/linux/notice.h"
#include "tests/support/captured_log.h"
#include "tests/support/look_alike.h"

#include <gtest/gtest.h>

#include <optional>
#include <utility>

#include <systemd/sd-bus.h>

using namespace wegslot;

namespace {

constexpr auto desktopName = "org.freedesktop.Notifications";
constexpr auto desktopPath = "/org/freedesktop/Notifications";

std::string text(sd_bus_message* message) {
    const char* value = "";
    sd_bus_message_read(message, "s", &value);
    return value;
}

/// What a desktop is told to show.
struct Shown {
    std::string title;
    std::string body;
    std::vector<std::string> actions;
    std::map<std::string, std::string> hints;
    int expires = -1;
    std::uint32_t replaces = 0;
};

std::string hint(sd_bus_message* message) {
    const char* type = "";
    sd_bus_message_peek_type(message, nullptr, &type);
    sd_bus_message_enter_container(message, 'v', type);
    std::string value;
    std::uint8_t byte = 0;
    int boolean = 0;
    if (*type == 'y' && sd_bus_message_read(message, "y", &byte) > 0) value = std::to_string(byte);
    if (*type == 'b' && sd_bus_message_read(message, "b", &boolean) > 0)
        value = boolean != 0 ? "true" : "false";
    if (*type == 's') value = text(message);
    sd_bus_message_exit_container(message);
    return std::string(type) + " " + value;
}

Shown read(sd_bus_message* call) {
    Shown shown;
    static_cast<void>(text(call)); // the application
    sd_bus_message_read(call, "u", &shown.replaces);
    static_cast<void>(text(call)); // its icon
    shown.title = text(call);
    shown.body = text(call);
    sd_bus_message_enter_container(call, 'a', "s");
    while (sd_bus_message_at_end(call, 0) == 0)
        shown.actions.push_back(text(call));
    sd_bus_message_exit_container(call);
    sd_bus_message_enter_container(call, 'a', "{sv}");
    while (sd_bus_message_enter_container(call, 'e', "sv") > 0) {
        std::string name = text(call);
        shown.hints[std::move(name)] = hint(call);
        sd_bus_message_exit_container(call);
    }
    sd_bus_message_exit_container(call);
    sd_bus_message_read(call, "i", &shown.expires);
    return shown;
}

struct WarningNotificationTest : testing::Test {
    CapturedLog log;
    BusLoop loop;
    dbus::Connection connection{loop.opener(), loop.attacher(), loop.time};
    std::optional<LookAlike> desktop{std::in_place, loop, desktopName};
    std::optional<WarningNotification> warning{std::in_place, connection};

    std::vector<std::string> capabilities{"body", "actions", "body-markup"};
    std::vector<Shown> shown;
    std::vector<std::uint32_t> closed;
    bool answersNotify = true;
    sd_bus_message* unanswered = nullptr;
    int cancelled = 0;

    void SetUp() override {
        desktop->on("org.freedesktop.Notifications.GetCapabilities",
                    [this](LookAlike& self, sd_bus_message* call) {
                        self.reply(call, [this](sd_bus_message* answer) {
                            sd_bus_message_open_container(answer, 'a', "s");
                            for (const std::string& capability : capabilities)
                                sd_bus_message_append(answer, "s", capability.c_str());
                            sd_bus_message_close_container(answer);
                        });
                    });
        desktop->on("org.freedesktop.Notifications.Notify",
                    [this](LookAlike& self, sd_bus_message* call) {
                        shown.push_back(read(call));
                        if (answersNotify) return answer(self, call);
                        unanswered = sd_bus_message_ref(call);
                    });
        desktop->on("org.freedesktop.Notifications.CloseNotification",
                    [this](LookAlike& self, sd_bus_message* call) {
                        std::uint32_t id = 0;
                        sd_bus_message_read(call, "u", &id);
                        closed.push_back(id);
                        self.reply(call);
                    });
        loop.pass(Nanoseconds{0});
    }

    /// The number of the notification is how many there were.
    void answer(LookAlike& self, sd_bus_message* call) {
        self.reply(call, [this](sd_bus_message* message) {
            sd_bus_message_append(message, "u", static_cast<std::uint32_t>(shown.size()));
        });
    }
    void answerNow() {
        answer(*desktop, unanswered);
        sd_bus_message_unref(std::exchange(unanswered, nullptr));
        settle();
    }
    void show(const std::string& message = "Telefoon is buiten bereik") {
        warning->show(loop.time.now(), Seconds{5}, message, [this] { ++cancelled; });
        settle();
    }
    /// A call may bring another, and that one an answer.
    void settle() {
        for (int round = 0; round < 3; ++round)
            loop.settle();
    }
    void invoke(std::uint32_t id, const std::string& action = "ik-ben-er-nog") {
        desktop->signal(desktopPath, desktopName, "ActionInvoked", [&](sd_bus_message* message) {
            sd_bus_message_append(message, "us", id, action.c_str());
        });
        settle();
    }
};

} // namespace

TEST_F(WarningNotificationTest, SaysWhatThePanelSaysAndStaysUntilItIsClosed) {
    show();
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_EQ(shown[0].title, "Je Mac lockt zo");
    EXPECT_EQ(shown[0].body, "Telefoon is buiten bereik");
    EXPECT_EQ(shown[0].actions, (std::vector<std::string>{"ik-ben-er-nog", "Ik ben er nog"}));
    EXPECT_EQ(shown[0].hints["urgency"], "y 2");
    EXPECT_EQ(shown[0].hints["transient"], "b true");
    EXPECT_EQ(shown[0].expires, 0);
    EXPECT_TRUE(closed.empty());
    warning->hide();
    settle();
    EXPECT_EQ(closed, std::vector<std::uint32_t>{1});
    warning->hide(); // there is none
    settle();
    EXPECT_EQ(closed.size(), 1U);
}

TEST_F(WarningNotificationTest, NamesAreNoMarkup) {
    show("Jan & <b>Piet</b> is buiten bereik");
    EXPECT_EQ(shown.back().body, "Jan &amp; &lt;b&gt;Piet&lt;/b&gt; is buiten bereik");
    capabilities = {"body", "actions"};
    show("Jan & <b>Piet</b> is buiten bereik");
    EXPECT_EQ(shown.back().body, "Jan & <b>Piet</b> is buiten bereik");
}

TEST_F(WarningNotificationTest, ItsActionCancelsOnceForEachPress) {
    show();
    invoke(1, "default"); // a click beside the action
    invoke(2);            // somebody else's
    EXPECT_EQ(cancelled, 0);
    invoke(1);
    EXPECT_EQ(cancelled, 1);
    invoke(1);
    EXPECT_EQ(cancelled, 2);
    warning->hide();
    settle();
    invoke(1);
    EXPECT_EQ(cancelled, 2);
}

TEST_F(WarningNotificationTest, TheCancelMayHideItOrShowAnother) {
    warning->show(loop.time.now(), Seconds{5}, "een", [this] {
        warning->hide();
        warning->show(loop.time.now(), Seconds{5}, "twee", [this] { ++cancelled; });
    });
    settle();
    invoke(1);
    EXPECT_EQ(closed, std::vector<std::uint32_t>{1});
    ASSERT_EQ(shown.size(), 2U);
    EXPECT_EQ(shown[1].body, "twee");
    invoke(2);
    EXPECT_EQ(cancelled, 1);
}

TEST_F(WarningNotificationTest, OneThatIsHiddenBeforeItHasANumberIsClosedWhenItGetsOne) {
    answersNotify = false;
    show();
    ASSERT_NE(unanswered, nullptr);
    warning->hide();
    settle();
    EXPECT_TRUE(closed.empty());
    answerNow();
    EXPECT_EQ(closed, std::vector<std::uint32_t>{1});
}

TEST_F(WarningNotificationTest, OneThatIsHiddenBeforeTheDesktopWasAskedIsNeverShown) {
    warning->show(loop.time.now(), Seconds{5}, "een", [] {});
    warning->hide();
    settle();
    EXPECT_TRUE(shown.empty());
    EXPECT_TRUE(closed.empty());
}

TEST_F(WarningNotificationTest, OneThatItsUserClosedIsNotClosedAgain) {
    show();
    desktop->signal(desktopPath, desktopName, "NotificationClosed",
                    [](sd_bus_message* message) { sd_bus_message_append(message, "uu", 1U, 2U); });
    settle();
    EXPECT_EQ(cancelled, 0); // who waves it away has not said to be there
    warning->hide();
    settle();
    EXPECT_TRUE(closed.empty());
}

TEST_F(WarningNotificationTest, WithoutAnybodyToShowItNothingHappens) {
    desktop->vanish();
    show();
    warning->hide();
    settle();
    EXPECT_TRUE(shown.empty());
    EXPECT_TRUE(log.messages.empty());
    desktop->appear();
    show();
    EXPECT_EQ(shown.size(), 1U);
}

TEST_F(WarningNotificationTest, NonsenseIsSkipped) {
    desktop->on("org.freedesktop.Notifications.Notify", [this](LookAlike& self,
                                                               sd_bus_message* call) {
        shown.push_back(read(call));
        self.reply(call, [](sd_bus_message* answer) { sd_bus_message_append(answer, "s", "één"); });
    });
    show();
    desktop->signal(desktopPath, desktopName, "ActionInvoked");
    desktop->signal(desktopPath, desktopName, "ActionInvoked", [](sd_bus_message* message) {
        sd_bus_message_append(message, "su", "ik-ben-er-nog", 1U);
    });
    desktop->signal(desktopPath, desktopName, "NotificationClosed");
    settle();
    invoke(0);
    EXPECT_EQ(cancelled, 0);
    warning->hide();
    settle();
    EXPECT_TRUE(closed.empty());
}

TEST_F(WarningNotificationTest, EndsWithTheProgram) {
    show();
    warning.reset();
    settle();
    EXPECT_EQ(closed, std::vector<std::uint32_t>{1});
}

TEST_F(WarningNotificationTest, ABusThatGoesTakesItAlong) {
    show();
    desktop->vanish();
    loop.daemon.stop();
    ASSERT_TRUE(loop.runUntil([this] { return connection.bus().get() == nullptr; }));
    warning->hide();
    warning->show(loop.time.now(), Seconds{5}, "een", [] {});
    warning->hide();
    EXPECT_TRUE(closed.empty());
}

TEST(NoticeTest, StaysUntilItIsSoNoLonger) {
    BusLoop loop;
    LookAlike desktop(loop, desktopName);
    std::vector<Shown> all;
    std::vector<std::uint32_t> gone;
    desktop.on(std::string(desktopName) + ".Notify", [&all](LookAlike& self, sd_bus_message* call) {
        all.push_back(read(call));
        self.reply(call, [](sd_bus_message* answer) { sd_bus_message_append(answer, "u", 7U); });
    });
    desktop.on(std::string(desktopName) + ".CloseNotification",
               [&gone](LookAlike& self, sd_bus_message* call) {
                   sd_bus_message_read(call, "u", &gone.emplace_back());
                   self.reply(call, [](sd_bus_message*) {});
               });
    dbus::Connection session(loop.opener(), loop.attacher(), loop.time);
    std::optional<Notice> notice;
    notice.emplace(session, "Titel", "Met <b> & zo"); // there is no bus yet
    ASSERT_TRUE(loop.runUntil([&] { return all.size() == 1; }));
    loop.settle();
    EXPECT_EQ(all[0].title, "Titel");
    EXPECT_EQ(all[0].body, "Met _b_ _ zo");
    EXPECT_EQ(all[0].expires, 0);
    EXPECT_EQ(all[0].hints["urgency"], "y 2");
    EXPECT_FALSE(all[0].hints.contains("transient"));
    EXPECT_TRUE(gone.empty());
    notice.reset();
    ASSERT_TRUE(loop.runUntil([&] { return gone.size() == 1; }));
    EXPECT_EQ(gone[0], 7U);
}
