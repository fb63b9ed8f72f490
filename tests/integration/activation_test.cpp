// A second start of Wegslot asks the first one to show itself, on a real bus.

#include "control/linux/activation.h"

#include "tests/support/bus_loop.h"
#include "tests/support/look_alike.h"

#include <gtest/gtest.h>

#include <systemd/sd-bus.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

using Tokens = std::vector<std::string>;
using Answers = std::vector<bool>;

constexpr auto activate = "org.freedesktop.Application.Activate";

struct ActivationTest : testing::Test {
    BusLoop loop;
    dbus::Connection connection{loop.opener(), loop.attacher(), loop.time};
    Tokens tokens; ///< that the first one was told
    std::optional<Activation> first;
    std::unique_ptr<dbus::Bus> client = loop.connect();
    Handle driving = loop.attach(*client);
    std::optional<std::string> owner;
    Subscription following = client->followOwner(
        Activation::name, [this](const std::optional<std::string>& now) { owner = now; });

    void start() {
        first.emplace(connection, [this](const std::string& token) { tokens.push_back(token); });
        ASSERT_TRUE(loop.runUntil([this] { return owner.has_value(); }));
    }
    /// The error's name; empty when it was taken.
    std::string call(const std::string& member, const char* types = "a{sv}",
                     const std::function<void(sd_bus_message*)>& append = appendNothing) {
        sd_bus_message* message = nullptr;
        sd_bus_message_new_method_call(client->native(), &message, Activation::name,
                                       Activation::path, Activation::interfaceName, member.c_str());
        append(message);
        EXPECT_STREQ(sd_bus_message_get_signature(message, 1), types);
        std::optional<std::string> error;
        sd_bus_slot* slot = nullptr;
        sd_bus_call_async(
            client->native(), &slot, message,
            [](sd_bus_message* answer, void* into, sd_bus_error*) {
                *static_cast<std::optional<std::string>*>(into) =
                    dbus::Message{answer}.error().value_or("");
                return 0;
            },
            &error, 0);
        EXPECT_TRUE(loop.runUntil([&error] { return error.has_value(); }));
        sd_bus_slot_unref(slot);
        sd_bus_message_unref(message);
        return error.value_or("none");
    }
    static void appendNothing(sd_bus_message* message) {
        sd_bus_message_append(message, "a{sv}", 0);
    }
};

/// The first one is whoever owns the name.
struct ActivationRequestTest : ActivationTest {
    dbus::Connection second{loop.opener(), loop.attacher(), loop.time};
    Answers answers;
    std::optional<ActivationRequest> request;

    void ask(const std::string& token = "") {
        request.emplace(second, loop.time, token, [this](bool taken) { answers.push_back(taken); });
    }
};

} // namespace

TEST_F(ActivationTest, TheFirstOneIsToldOfEachActivation) {
    start();
    EXPECT_EQ(call("Activate"), "");
    EXPECT_EQ(tokens, Tokens{""});
    EXPECT_EQ(call("Activate"), "");
    EXPECT_EQ(tokens, (Tokens{"", ""}));
}

TEST_F(ActivationTest, FilesToOpenActivateItToo) {
    start();
    EXPECT_EQ(call("Open", "asa{sv}",
                   [](sd_bus_message* message) {
                       sd_bus_message_append(message, "asa{sv}", 2, "file:///a", "file:///b", 1,
                                             "activation-token", "s", "een");
                   }),
              "");
    EXPECT_EQ(tokens, Tokens{"een"});
}

TEST_F(ActivationTest, ItHasNoActionsOfItsOwn) {
    start();
    EXPECT_EQ(call("ActivateAction", "sava{sv}",
                   [](sd_bus_message* message) {
                       sd_bus_message_append(message, "sava{sv}", "lock", 0, 0);
                   }),
              "org.freedesktop.DBus.Error.InvalidArgs");
    EXPECT_EQ(tokens, Tokens{});
}

TEST_F(ActivationTest, TheTokenIsPassedOnByEitherOfItsNames) {
    start();
    const auto with = [this](const char* field, const char* token, const char* other,
                             const char* otherToken) {
        call("Activate", "a{sv}", [&](sd_bus_message* message) {
            sd_bus_message_append(message, "a{sv}", 3, field, "s", token, "x", "u", 7U, other, "s",
                                  otherToken);
        });
        return tokens.back();
    };
    EXPECT_EQ(with("activation-token", "een", "y", "z"), "een");
    EXPECT_EQ(with("desktop-startup-id", "twee", "y", "z"), "twee");
    EXPECT_EQ(with("desktop-startup-id", "twee", "activation-token", "een"), "een");
    EXPECT_EQ(with("activation-token", "een", "desktop-startup-id", "twee"), "een");
    EXPECT_EQ(with("activation-token", "", "desktop-startup-id", "twee"), "twee");
}

TEST_F(ActivationTest, NonsenseForATokenIsNone) {
    start();
    EXPECT_EQ(call("Activate", "a{sv}",
                   [](sd_bus_message* message) {
                       sd_bus_message_append(message, "a{sv}", 2, "activation-token", "u", 7U,
                                             "desktop-startup-id", "as", 1, "a");
                   }),
              "");
    EXPECT_EQ(tokens, Tokens{""});
    EXPECT_EQ(call("Activate", "s",
                   [](sd_bus_message* message) { sd_bus_message_append(message, "s", "een"); }),
              "org.freedesktop.DBus.Error.InvalidArgs");
    EXPECT_EQ(tokens, Tokens{""});
}

TEST_F(ActivationTest, WhoeverFindsTheNameFindsTheObject) {
    std::optional<std::string> error;
    Subscription asking;
    const auto waiting =
        client->followOwner(Activation::name, [&](const std::optional<std::string>& now) {
            if (!now) return;
            asking = client->call(
                {.destination = *now,
                 .path = Activation::path,
                 .interface = Activation::interfaceName,
                 .member = "Activate",
                 .arguments = {dbus::Dictionary{}}},
                [&](const dbus::Message& answer) { error = answer.error().value_or(""); });
        });
    start();
    ASSERT_TRUE(loop.runUntil([&error] { return error.has_value(); }));
    EXPECT_EQ(*error, "");
}

TEST_F(ActivationTest, OnEachBusThatComesItIsThereAgain) {
    start();
    for (int round = 1; round <= 3; ++round) {
        loop.daemon.stop();
        ASSERT_TRUE(loop.runUntil([this] { return connection.bus().get() == nullptr; }));
        loop.daemon.start();
        following.reset();
        driving.reset();
        client = loop.connect();
        driving = loop.attach(*client);
        owner.reset();
        following = client->followOwner(
            Activation::name, [this](const std::optional<std::string>& now) { owner = now; });
        loop.time.advance(dbus::Connection::retryInterval);
        ASSERT_TRUE(loop.runUntil([this] { return owner.has_value(); }));
        EXPECT_EQ(call("Activate"), "");
        EXPECT_EQ(tokens.size(), static_cast<std::size_t>(round));
    }
}

TEST_F(ActivationTest, WhenItEndsItsNameIsFreeThoughTheConnectionStays) {
    start();
    const std::string before = *owner;
    first.reset();
    ASSERT_TRUE(loop.runUntil([this] { return !owner; }));
    ASSERT_NE(connection.bus().get(), nullptr);
    EXPECT_EQ(connection.bus().get()->uniqueName(), before);
    start();
    EXPECT_EQ(call("Activate"), "");
    EXPECT_EQ(tokens, Tokens{""});
}

TEST_F(ActivationTest, ANameThatAnotherHasIsItsOwnAfterwards) {
    std::optional<LookAlike> other(std::in_place, loop, Activation::name);
    ASSERT_TRUE(loop.runUntil([this] { return owner.has_value(); }));
    const std::string others = *owner;
    start();
    loop.settle();
    EXPECT_EQ(owner, others);
    other->vanish();
    ASSERT_TRUE(loop.runUntil([&] { return owner && *owner != others; }));
    EXPECT_EQ(call("Activate"), "");
    EXPECT_EQ(tokens, Tokens{""});
}

TEST_F(ActivationTest, ItMayEndFromWithinAnActivation) {
    std::weak_ptr<int> held;
    {
        const auto something = std::make_shared<int>();
        held = something;
        first.emplace(connection, [this, &held, something](const std::string& token) {
            auto& test = *this;
            const auto& stillHeld = held;
            test.first.reset();
            EXPECT_FALSE(stillHeld.expired()); // what runs is there until it has run
            test.tokens.push_back(token);
        });
    }
    ASSERT_TRUE(loop.runUntil([this] { return owner.has_value(); }));
    EXPECT_EQ(call("Activate"), "");
    EXPECT_EQ(tokens, Tokens{""});
    ASSERT_TRUE(loop.runUntil([this] { return !owner; }));
}

// A second start.

TEST_F(ActivationRequestTest, TheFirstOneTakesItAndIsToldTheTokenOnce) {
    start();
    ask("een");
    ASSERT_TRUE(loop.runUntil([this] { return !answers.empty(); }));
    EXPECT_EQ(answers, Answers{true});
    EXPECT_EQ(tokens, Tokens{"een"});
    loop.pass(ActivationRequest::patience);
    EXPECT_EQ(answers, Answers{true});
    EXPECT_EQ(tokens, Tokens{"een"});
}

TEST_F(ActivationRequestTest, WithoutATokenThereIsNone) {
    start();
    ask();
    ASSERT_TRUE(loop.runUntil([this] { return !answers.empty(); }));
    EXPECT_EQ(tokens, Tokens{""});
}

TEST_F(ActivationRequestTest, WithNobodyThereItIsToldSoAfterTwoSeconds) {
    EXPECT_EQ(ActivationRequest::patience, 2s);
    ask();
    loop.pass(ActivationRequest::patience - 1ns);
    EXPECT_EQ(answers, Answers{});
    loop.pass(1ns);
    EXPECT_EQ(answers, Answers{false});
    loop.pass(1h);
    EXPECT_EQ(answers, Answers{false});
}

TEST_F(ActivationRequestTest, OneThatComesInTimeTakesIt) {
    ask();
    loop.pass(ActivationRequest::patience - 1ns);
    start();
    ASSERT_TRUE(loop.runUntil([this] { return !answers.empty(); }));
    EXPECT_EQ(answers, Answers{true});
    EXPECT_EQ(tokens.size(), 1U);
}

TEST_F(ActivationRequestTest, OneThatComesTooLateIsNotAskedAnyMore) {
    ask();
    loop.pass(ActivationRequest::patience);
    start();
    loop.settle();
    EXPECT_EQ(answers, Answers{false});
    EXPECT_EQ(tokens, Tokens{});
}

TEST_F(ActivationRequestTest, OneThatHangsHasNotTakenIt) {
    LookAlike hanging(loop, Activation::name);
    sd_bus_message* asked = nullptr;
    hanging.on(activate,
               [&asked](LookAlike&, sd_bus_message* call) { asked = sd_bus_message_ref(call); });
    ask();
    ASSERT_TRUE(loop.runUntil([&asked] { return asked != nullptr; }));
    loop.pass(ActivationRequest::patience);
    EXPECT_EQ(answers, Answers{false});
    hanging.reply(asked); // after all
    loop.settle();
    EXPECT_EQ(answers, Answers{false});
    EXPECT_EQ(hanging.calls("Activate"), 1);
    sd_bus_message_unref(asked);
}

TEST_F(ActivationRequestTest, OneThatRefusesHasNotTakenItButItsSuccessorMay) {
    LookAlike other(loop, Activation::name);
    ask();
    ASSERT_TRUE(loop.runUntil([&other] { return other.calls("Activate") == 1; }));
    loop.pass(ActivationRequest::patience - 1ns);
    EXPECT_EQ(answers, Answers{});
    EXPECT_EQ(other.calls("Activate"), 1);
    other.vanish();
    start();
    ASSERT_TRUE(loop.runUntil([this] { return !answers.empty(); }));
    EXPECT_EQ(answers, Answers{true});
}

TEST_F(ActivationRequestTest, NothingIsEverStartedForIt) {
    const TemporaryFolder folder;
    const std::string mark = (folder.path() / "started").string();
    loop.daemon.offer(Activation::name, "/bin/sh -c 'touch " + mark + "; exit 1'");
    ask();
    loop.pass(ActivationRequest::patience);
    EXPECT_EQ(answers, Answers{false});
    EXPECT_FALSE(std::filesystem::exists(mark));
    // Anybody else's call would have: the daemon was ready to.
    EXPECT_NE(call("Activate"), "");
    EXPECT_TRUE(std::filesystem::exists(mark));
}

TEST_F(ActivationRequestTest, WithoutABusNobodyTakesIt) {
    loop.daemon.stop();
    ask();
    loop.time.advance(ActivationRequest::patience - 1ns);
    EXPECT_EQ(answers, Answers{});
    loop.time.advance(1ns);
    EXPECT_EQ(answers, Answers{false});
}

TEST_F(ActivationRequestTest, ABusThatComesLaterIsAskedNothingAnyMore) {
    start();
    loop.daemon.stop();
    ASSERT_TRUE(loop.runUntil([this] { return connection.bus().get() == nullptr; }));
    ask();
    loop.time.advance(ActivationRequest::patience);
    EXPECT_EQ(answers, Answers{false});
    loop.daemon.start();
    loop.time.advance(dbus::Connection::retryInterval);
    ASSERT_TRUE(loop.runUntil([this] { return second.bus().get() && connection.bus().get(); }));
    loop.settle();
    EXPECT_EQ(tokens, Tokens{});
}

TEST_F(ActivationRequestTest, ItMayEndFromWithinItsAnswer) {
    start();
    for (const bool taken : {true, false}) {
        request.emplace(second, loop.time, "", [this](bool answer) {
            request.reset();
            answers.push_back(answer);
        });
        if (!taken) loop.pass(ActivationRequest::patience);
        ASSERT_TRUE(loop.runUntil([this] { return !answers.empty(); }));
        EXPECT_EQ(std::exchange(answers, {}), Answers{taken});
        first.reset();
        ASSERT_TRUE(loop.runUntil([this] { return !owner; }));
    }
}

TEST_F(ActivationRequestTest, OneThatIsGivenUpAnswersNothing) {
    ask();
    request.reset();
    loop.pass(ActivationRequest::patience);
    EXPECT_EQ(answers, Answers{});
}
