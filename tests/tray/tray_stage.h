// A status item on a private bus, with a watcher that the test plays and a host that asks for
// whatever it likes, well formed or not.
#pragma once

#include "tests/support/bus_loop.h"
#include "tests/support/look_alike.h"
#include "ui/linux/tray_item.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <systemd/sd-bus.h>

namespace wegslot {

using Answer = std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)>;

/// A program that draws status items.
class TrayHost {
public:
    using Append = std::function<void(sd_bus_message*)>;

    TrayHost(BusLoop& loop, std::string item) : loop_(loop), item_(std::move(item)) {}

    /// The answer, which may be an error; null when there is none in time.
    Answer ask(const std::string& path, const std::string& interface, const std::string& member,
               const Append& append = {}) {
        sd_bus_message* message = nullptr;
        sd_bus_message_new_method_call(bus_->native(), &message, item_.c_str(), path.c_str(),
                                       interface.c_str(), member.c_str());
        const Answer call(message, sd_bus_message_unref);
        if (append) append(message);
        sd_bus_message* reply = nullptr;
        sd_bus_slot* slot = nullptr;
        sd_bus_call_async(bus_->native(), &slot, message, keep, static_cast<void*>(&reply), 0);
        const bool came = loop_.runUntil([&reply] { return reply != nullptr; });
        sd_bus_slot_unref(slot);
        EXPECT_TRUE(came) << member << " is not answered";
        return {reply, sd_bus_message_unref};
    }
    Answer item(const std::string& member, const Append& append = {}) {
        return ask(TrayItem::path, TrayItem::interfaceName, member, append);
    }
    Answer menu(const std::string& member, const Append& append = {}) {
        return ask(TrayMenu::path, "com.canonical.dbusmenu", member, append);
    }
    /// Stands before the value, in its variant.
    Answer property(const std::string& path, const std::string& interface,
                    const std::string& name) {
        Answer answer =
            ask(path, "org.freedesktop.DBus.Properties", "Get", [&](sd_bus_message* call) {
                sd_bus_message_append(call, "ss", interface.c_str(), name.c_str());
            });
        const char* contents = nullptr;
        sd_bus_message_peek_type(answer.get(), nullptr, &contents);
        sd_bus_message_enter_container(answer.get(), 'v', contents);
        return answer;
    }
    std::string text(const std::string& name) {
        const Answer answer = property(TrayItem::path, TrayItem::interfaceName, name);
        const char* value = nullptr;
        sd_bus_message_read_basic(answer.get(), 's', static_cast<void*>(&value));
        return value == nullptr ? "(none)" : value;
    }
    static std::string error(const Answer& answer) {
        const sd_bus_error* const error = sd_bus_message_get_error(answer.get());
        return error == nullptr ? "" : error->name;
    }

    [[nodiscard]] dbus::Bus& bus() { return *bus_; }

private:
    static int keep(sd_bus_message* answer, void* place, sd_bus_error*) {
        *static_cast<sd_bus_message**>(place) = sd_bus_message_ref(answer);
        return 0;
    }

    BusLoop& loop_;
    std::string item_;
    std::unique_ptr<dbus::Bus> bus_ = loop_.connect();
    Handle driving_ = loop_.attach(*bus_);
};

struct TrayStage : testing::Test {
    static constexpr auto watcherName = TrayRegistration::watcher;

    BusLoop loop;
    dbus::Connection session{loop.opener(), loop.attacher(), loop.time};
    std::vector<std::string> done;
    int painted = 0;
    std::unique_ptr<TrayItem> item =
        std::make_unique<TrayItem>(session, loop.time, actions(), painter());

    void SetUp() override {
        ASSERT_TRUE(loop.runUntil([this] {
            return session.bus().get() != nullptr && !session.bus().get()->uniqueName().empty();
        }));
    }
    TrayActions actions() {
        return {.open =
                    [this](const TrayClick& click) {
                        std::string at = "menu";
                        if (click.at)
                            at = std::to_string(click.at->x) + "," + std::to_string(click.at->y);
                        done.push_back("open " + at + " " + click.activationToken);
                    },
                .lock = [this] { done.emplace_back("lock"); },
                .pause =
                    [this](Seconds duration) {
                        done.push_back("pause " +
                                       std::to_string(static_cast<int>(duration.count())));
                    },
                .pauseUntilMorning = [this] { done.emplace_back("pause until morning"); },
                .resume = [this] { done.emplace_back("resume"); },
                .couple = [this] { done.emplace_back("couple"); },
                .insight = [this] { done.emplace_back("insight"); },
                .quit = [this] { done.emplace_back("quit"); }};
    }
    /// One colour all over: opaque, the symbol's length, the colour's blue and 7.
    TrayPainter painter() {
        return [this](const std::string& symbol, const Color& color, int side) {
            ++painted;
            TrayPicture picture{.side = side};
            for (int i = 0; i < side * side; ++i)
                for (const int part : {255, static_cast<int>(symbol.size()), int{color.blue}, 7})
                    picture.argb.push_back(static_cast<std::uint8_t>(part));
            return picture;
        };
    }
    [[nodiscard]] std::string ownName() const { return session.bus().get()->uniqueName(); }
    std::unique_ptr<TrayHost> host() { return std::make_unique<TrayHost>(loop, ownName()); }

    /// A watcher that keeps what is registered with it.
    std::unique_ptr<LookAlike> watcher() {
        auto service = std::make_unique<LookAlike>(loop, watcherName);
        service->on(registering, [this](LookAlike& self, sd_bus_message* call) {
            const char* name = nullptr;
            sd_bus_message_read_basic(call, 's', static_cast<void*>(&name));
            registered.emplace_back(name == nullptr ? "(none)" : name);
            self.reply(call);
        });
        return service;
    }
    static constexpr auto registering = "org.kde.StatusNotifierWatcher.RegisterStatusNotifierItem";
    std::vector<std::string> registered;
};

} // namespace wegslot
