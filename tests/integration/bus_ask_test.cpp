// A question on the bus that is waited for: what it gives, how long it takes, and what becomes of
// what else comes in. And one that cannot be put.

#include "tests/integration/answering_service.h"
#include "tests/support/bus_loop.h"
#include "tests/support/environment.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

constexpr auto name = "nl.wegslot.Test";
constexpr auto path = "/test";

void replyWith(sd_bus_message* call, std::uint64_t value) {
    sd_bus_reply_method_return(call, "t", value);
}

struct BusAskTest : testing::Test {
    void SetUp() override { loop.settle(); }

    [[nodiscard]] std::optional<std::int64_t> ask(std::chrono::microseconds timeout = 5s) {
        std::optional<std::int64_t> number;
        bus->ask({.destination = name,
                  .path = path,
                  .interface = name,
                  .member = "Number",
                  .timeout = timeout},
                 [&](const dbus::Message& answer) {
                     ++answers;
                     number = answer.read().integer();
                 });
        return number;
    }

    int answers = 0;
    BusLoop loop;
    std::unique_ptr<dbus::Bus> bus = loop.connect();
    Handle attached = loop.attach(*bus);
};

TEST_F(BusAskTest, AnswerIsThereWhenItReturns) {
    const AnsweringService service(loop.daemon.address(), name,
                                   [](sd_bus*, sd_bus_message* call) { replyWith(call, 7); });
    EXPECT_EQ(ask(), 7);
}

TEST_F(BusAskTest, LargestNumberThatFitsIsTheLastThatIsRead) {
    constexpr std::uint64_t largest = INT64_MAX;
    std::atomic<std::uint64_t> value = largest - 1;
    const AnsweringService service(loop.daemon.address(), name,
                                   [&](sd_bus*, sd_bus_message* call) { replyWith(call, value); });
    EXPECT_EQ(ask(), INT64_MAX - 1);
    value = largest;
    EXPECT_EQ(ask(), INT64_MAX);
    value = largest + 1;
    EXPECT_EQ(ask(), std::nullopt);
}

TEST_F(BusAskTest, ErrorAndAbsenceGiveNothing) {
    EXPECT_EQ(ask(), std::nullopt); // nobody has the name
    const AnsweringService service(loop.daemon.address(), name, [](sd_bus*, sd_bus_message* call) {
        sd_bus_reply_method_errorf(call, "nl.wegslot.Test.Error", "as told");
    });
    EXPECT_EQ(ask(), std::nullopt);
    EXPECT_EQ(answers, 0);
}

TEST_F(BusAskTest, SilenceGivesNothingAndALateAnswerIsNobodys) {
    sd_bus_message* kept = nullptr; // of the service's thread
    const AnsweringService service(loop.daemon.address(), name,
                                   [&kept](sd_bus*, sd_bus_message* call) {
                                       if (kept == nullptr) {
                                           kept = sd_bus_message_ref(call);
                                           return;
                                       }
                                       replyWith(kept, 1);
                                       kept = sd_bus_message_unref(kept);
                                       replyWith(call, 2);
                                   });
    const Environment patient{{{"SYSTEMD_BUS_TIMEOUT", "1h"}}}; // by the library's own this hangs
    EXPECT_EQ(ask(20ms), std::nullopt);
    EXPECT_EQ(answers, 0);
    EXPECT_EQ(ask(), 2);
}

TEST_F(BusAskTest, WhatComesMeanwhileIsHandledLaterInItsOrder) {
    std::vector<std::int64_t> heard;
    const auto listening =
        bus->onSignal(name, {.member = "Tick"}, [&](const dbus::Message& signal) {
            heard.push_back(signal.read().integer().value_or(0));
        });
    loop.settle();
    const AnsweringService service(loop.daemon.address(), name,
                                   [](sd_bus* own, sd_bus_message* call) {
                                       for (std::uint32_t tick = 1; tick <= 3; ++tick)
                                           sd_bus_emit_signal(own, path, name, "Tick", "u", tick);
                                       replyWith(call, 7);
                                   });
    EXPECT_EQ(ask(), 7);
    EXPECT_TRUE(heard.empty());
    const std::vector<std::int64_t> all{1, 2, 3};
    EXPECT_TRUE(loop.runUntil([&] { return heard == all; }));
}

TEST_F(BusAskTest, BusThatIsGoneOrNotYetThereGivesNothing) {
    const AnsweringService service(loop.daemon.address(), name,
                                   [](sd_bus*, sd_bus_message* call) { replyWith(call, 7); });
    attached.reset();
    bus = loop.connect();
    EXPECT_EQ(ask(), std::nullopt); // not yet greeted by the daemon
    attached = loop.attach(*bus);
    loop.settle();
    EXPECT_EQ(ask(), 7);
    loop.daemon.stop();
    EXPECT_EQ(ask(), std::nullopt);
}

TEST_F(BusAskTest, CallThatCannotBeFormedFailsItsCallerLikeAnyOther) {
    int errors = 0;
    const auto count = [&errors](const dbus::Message& answer) { errors += answer.error() ? 1 : 0; };
    const auto badPath = bus->call(
        {.destination = name, .path = "nowhere", .interface = name, .member = "Number"}, count);
    const auto badText = bus->call({.destination = name,
                                    .path = path,
                                    .interface = name,
                                    .member = "Number",
                                    .arguments = {std::string("\xff")}},
                                   count);
    EXPECT_EQ(errors, 0); // not while the caller still holds nothing
    EXPECT_TRUE(loop.runUntil([&] { return errors == 2; }));
}

} // namespace
