#include "ui/update_presentation.h"

#include <gtest/gtest.h>

#include <vector>

using namespace wegslot;
using namespace wegslot::panel;

namespace {

Release release(std::optional<std::string> notes = {}) {
    return {.version = "1.4",
            .build = 27,
            .url = "image",
            .sha256 = "",
            .signature = "",
            .notes = std::move(notes)};
}

UpdateFacts in(Updater::State state, bool isConfigured = true) {
    return {.state = std::move(state), .currentVersion = "1.3", .isConfigured = isConfigured};
}

UpdateOffer offer(std::variant<Button, Busy> install, std::string notes = {}) {
    return {.symbol = "arrow.down.circle.fill",
            .title = "Versie 1.4 is er",
            .current = "Je hebt nu 1.3",
            .install = std::move(install),
            .notes = std::move(notes)};
}

} // namespace

TEST(UpdateBanner, OffersANewVersion) {
    EXPECT_EQ(updateBanner(in(update_state::Available{release()})),
              UpdateBanner{offer(Button{"", "Update"})});
}

TEST(UpdateBanner, SaysWhatIsUnderWay) {
    EXPECT_EQ(updateBanner(in(update_state::Downloading{release()})),
              UpdateBanner{offer(Busy{"Downloaden"})});
    EXPECT_EQ(updateBanner(in(update_state::Installing{release()})),
              UpdateBanner{offer(Busy{"Installeren"})});
}

TEST(UpdateBanner, ShowsTheNotesWhenThereAreAny) {
    EXPECT_EQ(updateBanner(in(update_state::Available{release("Sneller\nKleiner")})),
              UpdateBanner{offer(Button{"", "Update"}, "Sneller\nKleiner")});
    EXPECT_EQ(updateBanner(in(update_state::Available{release("")})),
              UpdateBanner{offer(Button{"", "Update"})});
}

TEST(UpdateBanner, AFailedInstallationMayBeTriedAgain) {
    EXPECT_EQ(updateBanner(in(update_state::InstallFailed{"De schijf is vol"})),
              (UpdateBanner{UpdateTrouble{"exclamationmark.triangle.fill",
                                          "Update mislukt: De schijf is vol",
                                          brand::danger,
                                          {"", "Probeer opnieuw"}}}));
}

TEST(UpdateBanner, IsAbsentInEveryOtherState) {
    for (const Updater::State& state :
         {Updater::State{update_state::Idle{}}, Updater::State{update_state::Checking{}},
          Updater::State{update_state::UpToDate{}}, Updater::State{update_state::Failed{"x"}}})
        EXPECT_EQ(updateBanner(in(state)), UpdateBanner{}) << state.index();
}

TEST(UpdateBanner, AVersionCannotTakeASecondLine) {
    Release forged = release();
    forged.version = "1\n2";
    const auto banner = updateBanner(in(update_state::Available{forged}));
    EXPECT_EQ(std::get<UpdateOffer>(banner).title, "Versie 1\uFFFD2 is er");
    EXPECT_EQ(versionBlock(in(update_state::Available{forged})).status,
              "Versie 1\uFFFD2 is beschikbaar");
}

TEST(VersionBlock, EveryStateHasItsLine) {
    struct Row {
        Updater::State state;
        std::string configured;
        std::string notConfigured;
    };
    const std::string off = "Updates staan uit in deze versie";
    const std::vector<Row> rows{
        {update_state::Idle{}, "", off},
        {update_state::Checking{}, "Zoeken…", "Zoeken…"},
        {update_state::UpToDate{}, "Je hebt de nieuwste versie", "Je hebt de nieuwste versie"},
        {update_state::Available{release()}, "Versie 1.4 is beschikbaar",
         "Versie 1.4 is beschikbaar"},
        {update_state::Downloading{release()}, "", off},
        {update_state::Installing{release()}, "", off},
        {update_state::Failed{"Kan niet controleren op updates"}, "Kan niet controleren op updates",
         "Kan niet controleren op updates"},
        {update_state::InstallFailed{"De schijf is vol"}, "De schijf is vol", "De schijf is vol"},
    };
    ASSERT_EQ(rows.size(), std::variant_size_v<Updater::State>);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].state.index(), i);
        EXPECT_EQ(versionBlock(in(rows[i].state, true)).status, rows[i].configured) << i;
        EXPECT_EQ(versionBlock(in(rows[i].state, false)).status, rows[i].notConfigured) << i;
        EXPECT_EQ(versionBlock(in(rows[i].state)).version, "Versie 1.3");
    }
}

TEST(VersionBlock, LooksForUpdatesUnlessItCannotOrDoes) {
    EXPECT_EQ(versionBlock(in(update_state::Idle{})).check, (Button{"", "Zoek naar updates"}));
    EXPECT_FALSE(versionBlock(in(update_state::Idle{}, false)).check.isEnabled);
    EXPECT_FALSE(versionBlock(in(update_state::Checking{})).check.isEnabled);
    EXPECT_TRUE(versionBlock(in(update_state::Failed{"x"})).check.isEnabled);
    EXPECT_TRUE(versionBlock(in(update_state::Downloading{release()})).check.isEnabled);
}
