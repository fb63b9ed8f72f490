#include "history/happening_text.h"

#include "history/row.h"
#include "model/key_codec.h"
#include "model/settings.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

using namespace wegslot;
using namespace wegslot::history;
using namespace std::chrono_literals;

namespace {

constexpr TimePoint instant{std::chrono::sys_days{std::chrono::year{2026} / 11 / 23} + 3h + 2s};

/// The members of an event, in the order in which it lists them, or those of another one of the
/// same kind beside them.
class Beside {
public:
    template <typename T>
    Beside& operator()(std::string_view /*name*/, const T& field) {
        (*this)(field);
        return *this;
    }
    Beside& either(std::string_view /*name*/, const auto& field, std::string_view /*other*/,
                   const auto& otherwise) {
        (*this)(field);
        (*this)(otherwise);
        return *this;
    }
    Beside& always(std::string_view /*name*/, GattUuid /*value*/) { return *this; }

    template <typename T>
    void operator()(const T& field) {
        if (!isSecond_) return first_.push_back(&field);
        isSame_ = isSame_ && same(*static_cast<const T*>(first_.at(next_)), field);
        ++next_;
    }

    void second() { isSecond_ = true; }
    [[nodiscard]] bool isSame() const { return isSame_ && next_ == first_.size(); }

private:
    static bool same(const auto& one, const auto& other) { return one == other; }
    static bool same(const UserAction& one, const UserAction& other) {
        const auto* const pause = std::get_if<action::Pause>(&one);
        return one.index() == other.index() &&
               (pause == nullptr || pause->duration == std::get<action::Pause>(other).duration);
    }

    std::vector<const void*> first_;
    std::size_t next_ = 0;
    bool isSecond_ = false;
    bool isSame_ = true;
};

bool same(const trace::Event& one, const trace::Event& other) {
    if (one.index() != other.index()) return false;
    return std::visit(
        [&other](const auto& event) {
            Beside beside;
            event.fields(event, beside);
            beside.second();
            const auto& again = std::get<std::decay_t<decltype(event)>>(other);
            again.fields(again, beside);
            return beside.isSame();
        },
        one);
}

std::vector<trace::Event> everyEvent() {
    const Uuid id = idOf(258);
    KeyDevice key{.id = idOf(3),
                  .name = "",
                  .model = std::nullopt,
                  .isApple = false,
                  .threshold = Dbm{-72.5}};
    Preferences all;
    Settings::specimen().visit([&all](const auto& setting) {
        if (setting.name() != "keys") all.emplace(setting.name(), setting.byDefault());
    });
    all.insert_or_assign("awayDelay", 7.125);
    all.insert_or_assign("keys", Data{*encodeKeys({key,
                                                   {.id = idOf(4),
                                                    .name = "De \"mijne\" é\n",
                                                    .model = "A1",
                                                    .isApple = std::nullopt,
                                                    .threshold = Dbm{-1.0 / 3},
                                                    .isPasted = true}})});
    return {trace::Heard{.id = id,
                         .rssi = -60,
                         .name = "Naam",
                         .localName = "",
                         .manufacturerData = trace::MakersData{0, 0x4C, 255}},
            trace::Heard{.id = id,
                         .rssi = 127,
                         .name = std::nullopt,
                         .localName = std::nullopt,
                         .manufacturerData = std::nullopt},
            trace::RssiRead{.id = id, .rssi = -44, .error = std::nullopt},
            trace::RssiRead{.id = id, .rssi = std::nullopt, .error = "weg"},
            trace::Start{instant},
            trace::SettingsChange{all},
            trace::SettingsChange{{{"rule", std::string("anyAway")}}},
            trace::SettingsChange{},
            trace::RadioState{.state = CentralState::unauthorized,
                              .authorization = CentralAuthorization::denied},
            trace::RadioState{.state = CentralState::poweredOn, .authorization = std::nullopt},
            trace::Known{.id = id, .name = "Naam"},
            trace::Connected{id},
            trace::ConnectFailed{.id = id, .error = "weg"},
            trace::Disconnected{.id = id, .error = std::nullopt},
            trace::Services{.id = id, .services = {GattUuid{0x180A}, GattUuid{0x12345678}}},
            trace::Characteristics{.id = id, .characteristics = {GattUuid{0x2A24}}},
            trace::Value{.id = id,
                         .characteristic = GattUuid{0x2A24},
                         .value = std::string("\0\xFF", 2),
                         .name = "Naam"},
            trace::Session{SessionEvent::locked},
            trace::Session{SessionEvent::unlocked},
            trace::Input{},
            trace::Camera{true},
            trace::Camera{false},
            trace::Microphone{trace::ApplicationName("App")},
            trace::Microphone{trace::ApplicationName("")},
            trace::Microphone{},
            trace::AddKey{id},
            trace::RemoveKey{id},
            trace::SetThreshold{.id = id, .value = Dbm{-70.25}},
            trace::Discovery{true},
            trace::Action{action::LockNow{}},
            trace::Action{action::Pause{Seconds{900.125}}},
            trace::Action{action::Resume{}},
            trace::Action{action::CancelWarning{}},
            trace::Show{trace::Shown::keys},
            trace::Identity{.from = id, .to = idOf(1)},
            trace::End{}};
}

template <typename T>
void expectReturn(const T& told) {
    const auto again = readHappening(written(Happening{told}));
    ASSERT_TRUE(again) << written(Happening{told});
    const auto* const kind = std::get_if<T>(&*again);
    ASSERT_NE(kind, nullptr);
    EXPECT_EQ(*kind, told) << written(Happening{told});
}

std::string fault(std::string_view text) {
    const auto read = readHappening(text);
    return read ? "" : read.failure().message.builtIn();
}

} // namespace

TEST(HappeningText, EveryEventComesBackAsItWas) {
    std::set<std::size_t> kinds;
    for (const trace::Event& event : everyEvent()) {
        kinds.insert(event.index());
        const std::string text = written(Happening{event});
        const auto again = readHappening(text);
        ASSERT_TRUE(again) << text;
        ASSERT_TRUE(std::holds_alternative<trace::Event>(*again)) << text;
        EXPECT_TRUE(same(event, std::get<trace::Event>(*again))) << text;
    }
    EXPECT_EQ(kinds.size(), std::variant_size_v<trace::Event>) << "an event is missing above";
    EXPECT_FALSE(same(trace::Camera{true}, trace::Camera{false}));
}

TEST(HappeningText, EveryPhaseComesBackAsItWas) {
    for (const PhaseCause cause :
         {PhaseCause::judgement, PhaseCause::request, PhaseCause::screen}) {
        expectReturn(
            PhaseEntered{.name = "locked", .reason = "", .cause = cause, .until = std::nullopt});
        expectReturn(PhaseEntered{
            .name = "warning", .reason = "alle \"weg\"", .cause = cause, .until = instant + 5ms});
    }
    expectReturn(PhaseEntered{
        .name = "snoozed", .reason = "", .cause = PhaseCause::request, .until = TimePoint{-1ms}});
}

TEST(HappeningText, ARestComesBackAsItWas) { expectReturn(Rested{}); }

TEST(HappeningText, EveryOpinionComesBackAsItWas) {
    for (const Opinion::Of opinion : {Opinion::Of::unjust, Opinion::Of::late, Opinion::Of::none})
        expectReturn(Opinion{.of = instant + 999ms, .opinion = opinion});
}

TEST(HappeningText, TextsThatMeanNothingAreAFailure) {
    EXPECT_EQ(fault(""), "lege regel");
    EXPECT_EQ(fault("{"), "geen geldige JSON");
    EXPECT_EQ(fault(R"({"wandeling":true})"), "onbekende gebeurtenis \"wandeling\"");
    EXPECT_EQ(fault(R"({"phase":{"cause":"screen"}})"), "veld \"name\" ontbreekt in phase");
    EXPECT_EQ(fault(R"({"phase":{"name":1,"cause":"screen"}})"), "geen tekst: 1");
    EXPECT_EQ(fault(R"({"phase":{"name":"a","cause":"maan"}})"), "onbekende waarde: \"maan\"");
    EXPECT_EQ(fault(R"({"phase":{"name":"a","cause":"screen","kleur":1}})"),
              "onbekend veld \"kleur\" in phase");
    EXPECT_EQ(fault(R"({"phase":{"name":"a","cause":"screen"},"input":true})"),
              "twee gebeurtenissen: \"phase\" en \"input\"");
    EXPECT_EQ(fault(R"({"opinion":{"of":9223372036855,"is":"late"}})"),
              "geen tijdstip: 9223372036855");
    EXPECT_EQ(fault(R"({"opinion":{"of":9223372036854,"is":"late"}})"), "");
    EXPECT_EQ(fault(R"({"opinion":{"of":1.5,"is":"late"}})"), "geen tijdstip: 1.5");
}
