// Light or dark, by a desktop portal that the test plays.

#include "ui/linux/color_scheme.h"

#include "tests/support/bus_loop.h"
#include "tests/support/look_alike.h"

#include <gtest/gtest.h>

#include <systemd/sd-bus.h>

using namespace wegslot;

namespace {

constexpr auto portalName = "org.freedesktop.portal.Desktop";
constexpr auto portalPath = "/org/freedesktop/portal/desktop";
constexpr auto interface = "org.freedesktop.portal.Settings";
constexpr std::uint32_t none = 0;
constexpr std::uint32_t dark = 1;
constexpr std::uint32_t light = 2;

struct ColorSchemeTest : testing::Test {
    BusLoop loop;
    dbus::Connection session{loop.opener(), loop.attacher(), loop.time};
    Observable<Scheme> palette{Scheme::light};
    ColorScheme colors{session, palette};
    int told = 0;
    Subscription counting = colors.scheme().onChange([this](const Scheme&) { ++told; });

    /// A portal that answers `ReadOne`, or only the older `Read`.
    std::unique_ptr<LookAlike> portal(std::uint32_t value, const char* method = "ReadOne") {
        auto service = std::make_unique<LookAlike>(loop, portalName);
        const bool wrapped = std::string_view(method) == "Read";
        service->on(std::string(interface) + "." + method,
                    [value, wrapped](LookAlike& self, sd_bus_message* call) {
                        const char* group = "";
                        const char* key = "";
                        sd_bus_message_read(call, "ss", &group, &key);
                        if (std::string(group) != "org.freedesktop.appearance" ||
                            std::string(key) != "color-scheme")
                            return self.fail(call, "org.freedesktop.portal.Error.NotFound");
                        self.reply(call, [&](sd_bus_message* answer) {
                            if (wrapped) {
                                sd_bus_message_append(answer, "v", "v", "u", value);
                            } else {
                                sd_bus_message_append(answer, "v", "u", value);
                            }
                        });
                    });
        return service;
    }
    void change(LookAlike& portal, std::uint32_t value,
                const char* group = "org.freedesktop.appearance",
                const char* key = "color-scheme") {
        portal.signal(portalPath, interface, "SettingChanged", [&](sd_bus_message* signal) {
            sd_bus_message_append(signal, "ssv", group, key, "u", value);
        });
        loop.settle();
    }
    [[nodiscard]] bool becomes(Scheme scheme) {
        return loop.runUntil([&] { return colors.scheme().get() == scheme; });
    }
};

} // namespace

TEST_F(ColorSchemeTest, IsThePalettesWithoutABusAndWithoutAPortal) {
    EXPECT_EQ(colors.scheme().get(), Scheme::light);
    palette.set(Scheme::dark);
    EXPECT_EQ(colors.scheme().get(), Scheme::dark);
    loop.settle();
    EXPECT_EQ(colors.scheme().get(), Scheme::dark);
    palette.set(Scheme::light);
    EXPECT_EQ(colors.scheme().get(), Scheme::light);
    EXPECT_EQ(told, 2);
}

TEST_F(ColorSchemeTest, IsThePortalsWhereThereIsOne) {
    const auto service = portal(dark);
    EXPECT_TRUE(becomes(Scheme::dark));
    palette.set(Scheme::dark);
    palette.set(Scheme::light);
    EXPECT_EQ(colors.scheme().get(), Scheme::dark);
    EXPECT_EQ(told, 1);
}

TEST_F(ColorSchemeTest, OlderPortalsAreAskedTheOlderQuestion) {
    const auto service = portal(dark, "Read");
    EXPECT_TRUE(becomes(Scheme::dark));
    EXPECT_EQ(service->calls("ReadOne"), 1);
    EXPECT_EQ(service->calls("Read"), 1);
}

TEST_F(ColorSchemeTest, LightIsLightWhateverThePaletteSays) {
    palette.set(Scheme::dark);
    const auto service = portal(light);
    EXPECT_TRUE(becomes(Scheme::light));
}

TEST_F(ColorSchemeTest, ChangesAtOnce) {
    const auto service = portal(light);
    ASSERT_TRUE(loop.runUntil([&] { return service->calls("ReadOne") == 1; }));
    loop.settle();
    change(*service, dark);
    EXPECT_EQ(colors.scheme().get(), Scheme::dark);
    change(*service, light);
    EXPECT_EQ(colors.scheme().get(), Scheme::light);
    change(*service, light);
    EXPECT_EQ(told, 2);
}

TEST_F(ColorSchemeTest, WithoutAPreferenceThePaletteDecides) {
    const auto service = portal(dark);
    ASSERT_TRUE(becomes(Scheme::dark));
    change(*service, none);
    EXPECT_EQ(colors.scheme().get(), Scheme::light);
    palette.set(Scheme::dark);
    EXPECT_EQ(colors.scheme().get(), Scheme::dark);
}

TEST_F(ColorSchemeTest, OtherSettingsAndOtherSendersChangeNothing) {
    const auto service = portal(light);
    ASSERT_TRUE(loop.runUntil([&] { return service->calls("ReadOne") == 1; }));
    loop.settle();
    change(*service, dark, "org.freedesktop.appearance", "contrast");
    change(*service, dark, "org.gnome.desktop.interface", "color-scheme");
    LookAlike stranger(loop, "nl.example.Stranger");
    change(stranger, dark);
    EXPECT_EQ(colors.scheme().get(), Scheme::light);
    EXPECT_EQ(told, 0);
}

TEST_F(ColorSchemeTest, PortalMayComeLateAndGoAndComeBack) {
    loop.pass(std::chrono::hours{1});
    const auto service = portal(dark);
    ASSERT_TRUE(becomes(Scheme::dark));
    service->vanish();
    ASSERT_TRUE(becomes(Scheme::light));
    service->appear();
    ASSERT_TRUE(becomes(Scheme::dark));
}

TEST_F(ColorSchemeTest, GoesWithTheBusAndComesBackWithIt) {
    auto service = portal(dark);
    ASSERT_TRUE(becomes(Scheme::dark));
    service.reset();
    loop.daemon.stop();
    ASSERT_TRUE(becomes(Scheme::light));
    loop.daemon.start();
    loop.time.advance(dbus::Connection::retryInterval);
    service = portal(dark);
    EXPECT_TRUE(becomes(Scheme::dark));
}

TEST_F(ColorSchemeTest, NonsenseIsNoPreference) {
    using Append = LookAlike::Append;
    const std::vector<Append> nonsense{
        {},
        [](sd_bus_message* answer) { sd_bus_message_append(answer, "s", "donker"); },
        [](sd_bus_message* answer) { sd_bus_message_append(answer, "u", dark); },
        [](sd_bus_message* answer) { sd_bus_message_append(answer, "v", "u", 3); },
        [](sd_bus_message* answer) { sd_bus_message_append(answer, "v", "s", "1"); },
        [](sd_bus_message* answer) { sd_bus_message_append(answer, "v", "i", -1); },
        [](sd_bus_message* answer) { sd_bus_message_append(answer, "v", "au", 1, dark); }};
    for (std::size_t i = 0; i < nonsense.size(); ++i) {
        auto service = std::make_unique<LookAlike>(loop, portalName);
        service->on(
            std::string(interface) + ".ReadOne",
            [&, i](LookAlike& self, sd_bus_message* call) { self.reply(call, nonsense[i]); });
        ASSERT_TRUE(loop.runUntil([&] { return service->calls("ReadOne") == 1; }));
        loop.settle();
        EXPECT_EQ(colors.scheme().get(), Scheme::light) << i;
        service->signal(portalPath, interface, "SettingChanged", [](sd_bus_message* signal) {
            sd_bus_message_append(signal, "ss", "org.freedesktop.appearance", "color-scheme");
        });
        loop.settle();
        EXPECT_EQ(colors.scheme().get(), Scheme::light) << i;
    }
}

TEST_F(ColorSchemeTest, AnAnswerThatComesAfterAChangeDoesNotUndoIt) {
    auto service = std::make_unique<LookAlike>(loop, portalName);
    sd_bus_message* waiting = nullptr;
    service->on(std::string(interface) + ".ReadOne", [&waiting](LookAlike&, sd_bus_message* call) {
        waiting = sd_bus_message_ref(call);
    });
    ASSERT_TRUE(loop.runUntil([&waiting] { return waiting != nullptr; }));
    change(*service, dark);
    ASSERT_EQ(colors.scheme().get(), Scheme::dark);
    service->reply(waiting,
                   [](sd_bus_message* answer) { sd_bus_message_append(answer, "v", "u", light); });
    loop.settle();
    EXPECT_EQ(colors.scheme().get(), Scheme::dark);
    sd_bus_message_unref(waiting);
}
