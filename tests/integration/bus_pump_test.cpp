// A bus on a real event loop: read at once while it is quiet, in batches while it is busy.

#include "app/qt/bus_pump.h"
#include "base/virtual_time.h"
#include "dbus/forgeries.h"
#include "tests/support/private_bus.h"
#include "tests/support/waiting.h"

#include <gtest/gtest.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <poll.h>
#include <systemd/sd-bus.h>

using namespace wegslot;
using namespace std::chrono_literals;

namespace {

constexpr auto path = "/test";
constexpr auto interface = "nl.wegslot.Test";

constexpr int milliseconds(std::chrono::milliseconds duration) {
    return static_cast<int>(duration.count());
}

struct BusPumpTest : testing::Test {
    BusPumpTest() {
        receiver = connect();
        sender = connect();
        const char* senderName = nullptr;
        EXPECT_GE(sd_bus_get_unique_name(sender->native(), &senderName), 0); // once it has one
        counting = receiver->onSignal(senderName, {.member = "Number"},
                                      [this](const dbus::Message& message) {
                                          received.push_back(message.read().integer().value_or(-1));
                                      });
        driving = pumpInBatches(*receiver, [this] { ++losses; });
        // Once an answer has come the match is known too, and nothing more is under way.
        bool ready = false;
        const auto answer = receiver->call(id, [&](const dbus::Message&) { ready = true; });
        runUntil([&] { return ready; });
    }

    [[nodiscard]] std::unique_ptr<dbus::Bus> connect() {
        sd_bus* bus = nullptr;
        sd_bus_new(&bus);
        sd_bus_set_address(bus, daemon.address().c_str());
        sd_bus_set_bus_client(bus, 1);
        EXPECT_GE(sd_bus_start(bus), 0);
        return std::make_unique<dbus::Bus>(bus, forgeries);
    }

    void runUntil(const std::function<bool()>& condition) {
        QElapsedTimer patience;
        patience.start();
        QTimer awake; // so that the condition is looked at
        awake.start(20);
        QEventLoop loop;
        while (!condition() && !patience.hasExpired(milliseconds(onlyAHang)))
            loop.processEvents(QEventLoop::WaitForMoreEvents);
        ASSERT_TRUE(condition());
    }

    void send() {
        sd_bus_emit_signal(sender->native(), path, interface, "Number", "x", ++sent);
        sd_bus_flush(sender->native());
    }

    /// Whether something is there to be read.
    [[nodiscard]] bool comesIn() const {
        pollfd watched{receiver->fd(), POLLIN, 0};
        return poll(&watched, 1, milliseconds(onlyAHang)) == 1;
    }

    /// Sends until one is left to wait.
    void becomeBusy() {
        for (int tries = 0; tries < 50; ++tries) {
            send();
            ASSERT_TRUE(comesIn());
            QCoreApplication::processEvents();
            if (received.size() < static_cast<std::size_t>(sent)) return;
        }
        FAIL() << "every signal was handled at once";
    }

    /// Until a rest has ended at whose end nothing had come.
    void beSilent() {
        QElapsedTimer silence;
        silence.start();
        runUntil([&] { return silence.elapsed() > 3 * batchInterval.count(); });
    }

    void expectAllInOrder() {
        ASSERT_EQ(received.size(), static_cast<std::size_t>(sent));
        for (std::int64_t number = 1; number <= sent; ++number)
            EXPECT_EQ(received[static_cast<std::size_t>(number - 1)], number);
    }

    const dbus::Call id{.destination = "org.freedesktop.DBus",
                        .path = "/org/freedesktop/DBus",
                        .interface = "org.freedesktop.DBus",
                        .member = "GetId"};
    int argc = 1;
    std::string name = "bus_pump_test";
    char* argv[2] = {name.data(), nullptr};
    QCoreApplication application{argc, static_cast<char**>(argv)};
    PrivateBus daemon;
    VirtualTime time{TimePoint{1h}};
    dbus::Forgeries forgeries{time};
    std::unique_ptr<dbus::Bus> receiver;
    std::unique_ptr<dbus::Bus> sender;
    std::vector<std::int64_t> received;
    std::int64_t sent = 0;
    int losses = 0;
    Subscription counting;
    Handle driving;
};

} // namespace

TEST_F(BusPumpTest, WhatBreaksASilenceIsHandledAtOnce) {
    becomeBusy();
    runUntil([&] { return received.size() == static_cast<std::size_t>(sent); });
    beSilent();
    // The second too: one alone does not make the bus a busy one.
    for (int number = 0; number < 2; ++number) {
        send();
        ASSERT_TRUE(comesIn());
        QCoreApplication::processEvents();
        expectAllInOrder();
    }
}

TEST_F(BusPumpTest, WhileItIsBusyManyAreHandledInOneTurn) {
    int turns = 0;
    std::size_t before = 0;
    for (int number = 0; number < 200; ++number) {
        send();
        ASSERT_TRUE(comesIn());
        QCoreApplication::processEvents();
        if (std::exchange(before, received.size()) < received.size()) ++turns;
    }
    runUntil([&] { return received.size() == static_cast<std::size_t>(sent); });
    expectAllInOrder();
    EXPECT_LT(turns, 100);
}

TEST_F(BusPumpTest, AnAnswerIsHandledAtOnce) {
    becomeBusy();
    bool answered = false;
    const auto answer = receiver->call(id, [&](const dbus::Message&) { answered = true; });
    while (!answered) {
        Q_EMIT QAbstractEventDispatcher::instance()->aboutToBlock(); // as the loop does
        ASSERT_TRUE(comesIn());
        const std::size_t before = received.size();
        QCoreApplication::processEvents();
        ASSERT_TRUE(answered || received.size() > before) << "left to wait";
    }
    // With it came what had been.
    expectAllInOrder();
}

TEST_F(BusPumpTest, WhoCannotWaitReadsForItself) {
    becomeBusy();
    send();
    while (received.size() < static_cast<std::size_t>(sent) && comesIn())
        receiver->process();
    expectAllInOrder();
    // The rest goes on as if nothing had happened.
    send();
    runUntil([&] { return received.size() == static_cast<std::size_t>(sent); });
    expectAllInOrder();
}

TEST_F(BusPumpTest, ABusThatGoesDuringARestIsToldOnce) {
    becomeBusy();
    daemon.stop();
    runUntil([&] { return losses > 0; });
    runUntil([turns = 0]() mutable { return ++turns > 20; });
    EXPECT_EQ(losses, 1);
}

TEST_F(BusPumpTest, ABusThatAnotherFoundGoneIsToldOnce) {
    beSilent(); // or the end of a rest would find it
    daemon.stop();
    while (receiver->isOpen() && comesIn())
        receiver->process();
    EXPECT_FALSE(receiver->isOpen());
    runUntil([&] { return losses > 0; });
    EXPECT_EQ(losses, 1);
}
