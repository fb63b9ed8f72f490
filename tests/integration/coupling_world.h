// BluezCouplingRadio over a bluetoothd that a test plays: what the radio tells, and the phones that
// come.
#pragma once

#include "coupling/bluez/bluez_coupling_radio.h"
#include "scanner/bluez/device_id.h"
#include "tests/support/captured_log.h"
#include "tests/support/look_alike_links.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/visited_bluez.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace wegslot {

/// Writes down what it is told.
class CouplingDiary final : public coupling::CouplingListener {
public:
    using Visitor = coupling::Visitor;

    void appears() override { told("appears"); }
    void cannotAppear(const coupling::Trouble& trouble) override {
        troubles.push_back(trouble);
        told("cannotAppear");
    }
    void visitorCame(const Visitor& visitor) override { told("came", visitor); }
    void acquaintanceCame(const Visitor& visitor) override { told("known", visitor); }
    void visitorChanged(const Visitor& visitor) override { told("changed", visitor); }
    void visitorLeft() override { told("left"); }
    void codeCame(std::uint32_t code) override { told("code " + std::to_string(code)); }
    void codeWithdrawn() override { told("withdrawn"); }
    void bonded(const Visitor& visitor) override { told("bonded", visitor); }
    void refused(coupling::Refusal refusal, const std::string& why) override {
        told("refused " + std::to_string(static_cast<int>(refusal)) + " " + why);
    }
    void isGone() override { told("gone"); }

    std::vector<std::string> events;
    std::vector<coupling::Trouble> troubles;
    std::function<void(const std::string&)> then; ///< what is done about it at once

private:
    void told(const std::string& event) {
        events.push_back(event);
        if (then) then(event);
    }
    void told(const std::string& event, const Visitor& visitor) {
        told(event + " " + visitor.name.value_or("?") + " " +
             (visitor.identity ? visitor.identity->text() : "-"));
    }
};

/// The fixture; tests of one subject derive from it.
struct CouplingWorld : testing::Test {
    using Confirmation = coupling::Confirmation;
    using Obstacle = coupling::Obstacle;
    using Events = std::vector<std::string>;
    using Properties = VisitedBluez::Properties;

    static constexpr auto path = LookAlikeBluez::adapterPath;
    static constexpr auto identity = "AA:BB:CC:DD:EE:01";
    static constexpr auto phone = "4A:00:00:00:00:01"; ///< a private address of it
    static constexpr auto other = "4A:00:00:00:00:02";
    static constexpr auto turnedDown = "org.bluez.Error.Rejected";

    CapturedLog log;
    BusLoop loop;
    VisitedBluez bluez{loop};
    LookAlikeLinks links{loop.time};
    TemporaryFolder data;
    const std::filesystem::path file = coupling::PairableNote::pathUnder(data.path());
    coupling::PairableNote note{file};
    int loans = 0;
    bool isLent = false;
    CouplingDiary diary;
    std::optional<coupling::BluezCouplingRadio> radio;

    CouplingWorld() {
        radio.emplace(
            loop.opener(), loop.attacher(), loop.time, links, [this] { return lend(); }, file);
        radio->setListener(&diary);
    }
    Handle lend() {
        ++loans;
        isLent = true;
        return Handle{[this] { isLent = false; }};
    }

    [[nodiscard]] bool isTold(const std::string& event) {
        return loop.runUntil(
            [&] { return std::ranges::find(diary.events, event) != diary.events.end(); });
    }
    Events take() {
        loop.settle();
        return std::exchange(diary.events, {});
    }
    void appearing(Confirmation confirmation = Confirmation::code) {
        radio->appear("Wegslot 4F2A", confirmation);
        ASSERT_TRUE(isTold("appears")) << testing::PrintToString(diary.events);
        ASSERT_EQ(take(), Events{"appears"});
    }
    void gone() {
        radio->disappear();
        ASSERT_TRUE(isTold("gone"));
    }
    /// A phone calls, from a private address unless told otherwise.
    void comes(const std::string& address = phone, Properties further = {}) {
        links.strengths[address] = -50;
        links.callers.insert(address);
        bluez.comes(address, std::move(further));
        loop.settle();
    }
    void goes(const std::string& address = phone) {
        links.strengths.erase(address);
        bluez.goes(address);
        loop.settle();
    }
    void visited() {
        comes();
        ASSERT_EQ(take(), Events{"came ? -"});
    }
    [[nodiscard]] static std::string pathOf(const std::string& address) {
        return LookAlikeBluez::pathOf(address);
    }
    [[nodiscard]] static std::string identityText() { return deviceId(identity, "public").text(); }
    [[nodiscard]] static Properties itsIdentity() {
        return {{"Address", std::string(identity)}, {"AddressType", std::string("public")}};
    }
    /// As bluetoothd tells of it when the keys have come.
    void bonds() {
        Properties all = itsIdentity();
        all["Name"] = std::string("Telefoon");
        all["Paired"] = true;
        all["Bonded"] = true;
        links.strengths[identity] = -50;
        links.callers.insert(identity);
        bluez.bluez.changeDevice(phone, all);
        loop.settle();
    }
    void bonded() {
        visited();
        bonds();
        ASSERT_EQ(take(), (Events{"bonded Telefoon " + identityText()}));
    }
    std::shared_ptr<std::string> ask(const std::string& member, const std::string& address) {
        auto answer = bluez.ask(member, {dbus::ObjectPath{pathOf(address)}});
        loop.settle();
        return answer;
    }
    std::shared_ptr<std::string> confirm(std::uint32_t code, const std::string& address = phone) {
        auto answer = bluez.ask("RequestConfirmation", {dbus::ObjectPath{pathOf(address)}, code});
        loop.settle();
        return answer;
    }
    /// Nothing that is ours is left at bluetoothd or in the file, and the radio is given back.
    void expectNothingLeft() {
        EXPECT_TRUE(bluez.agents.empty());
        EXPECT_TRUE(bluez.advertised.empty());
        EXPECT_TRUE(bluez.applications.empty());
        EXPECT_FALSE(std::filesystem::exists(file));
        EXPECT_FALSE(isLent);
    }
};

} // namespace wegslot
