// The warning under Wayland: on sway, through its X server, above a native window in full screen.

#include "tests/interface/picture.h"
#include "tests/interface/screens.h"
#include "tests/interface/shown_panel.h"
#include "tests/support/headless_sway.h"

using namespace wegslot;

namespace {

const QRect placeOnSway(440, 12, 400, 96); ///< on sway's headless output, 1280 wide

/// sway says where its X server is, which lets in the user of this test too.
std::string configuration(const RuntimeFolder& folder) {
    return "xwayland force\n"
           "exec sh -c 'xhost +local: && echo $DISPLAY > " +
           folder.path() + "/display'\n";
}

struct WarningOnSwayTest : testing::Test {
    RuntimeFolder folder;
    std::optional<HeadlessSway> sway;
    std::map<std::string, std::string> wayland{
        {"WAYLAND_DISPLAY", folder.path() + "/" + HeadlessSway::socketName},
        {"XDG_RUNTIME_DIR", folder.path()},
        {"QT_QPA_PLATFORM", "wayland"},
        {"DISPLAY", ""}};
    std::optional<OnScreen> on;
    ShownPanel warning;

    void SetUp() override {
        for (const char* const tool : {"sway", "Xwayland", "xhost", "grim", "wtype"})
            if (!isInstalled(tool)) GTEST_SKIP() << tool << " is not installed";
        sway.emplace(folder, configuration(folder));
        ASSERT_TRUE(sway->isListening) << sway->program().output();
        ASSERT_TRUE(becomesTrue([this] { return display().starts_with(':'); }))
            << sway->program().output();
        on.emplace(std::map<std::string, std::string>{
            {"DISPLAY", display()}, {"WAYLAND_DISPLAY", ""}, {"QT_QPA_PLATFORM", "xcb"}});
    }
    void TearDown() override {
        warning.hud.hide();
        ShownPanel::settle();
    }

    [[nodiscard]] std::string display() const {
        std::ifstream file(folder.path() + "/display");
        std::string name;
        std::getline(file, name);
        return name;
    }
    bool runs(std::vector<std::string> words) const {
        Program program({.words = std::move(words), .environment = wayland});
        return happens([&] { return !program.isRunning(); }) && program.ended() == 0;
    }
    [[nodiscard]] QImage seen() const {
        const std::string file = folder.path() + "/seen.png";
        return runs({"grim", file}) ? QImage(QString::fromStdString(file)) : QImage();
    }
    [[nodiscard]] bool isSeen() const {
        const QRect middle(22, 0, 356, 96);
        return difference(seen().copy(middle.translated(placeOnSway.topLeft())),
                          ShownPanel::panel().grab(middle).toImage())
            .isNone();
    }
};

} // namespace

TEST_F(WarningOnSwayTest, IsWhollySeenAboveANativeFullScreenWindowWhichKeepsTheKeyboard) {
    const FullScreenProgram film(wayland);
    ASSERT_TRUE(film.isShown) << film.output();
    // Somebody with a keyboard, which is there while the panel comes.
    Program person(
        {.words = {"wtype", "-s", "300", "-k", "a", "-s", "2000", "-k", "Escape", "-s", "2000"},
         .environment = wayland});
    ASSERT_TRUE(happens([&] { return film.got(Qt::Key_A); })) << film.output();
    warning.show();
    EXPECT_TRUE(happens([this] { return isSeen(); }));
    EXPECT_EQ(ShownPanel::panel().frameGeometry(), placeOnSway);
    EXPECT_TRUE(happens([&] { return film.got(Qt::Key_Escape); }));
    EXPECT_FALSE(film.everLostKeyboard()) << film.output();
    EXPECT_EQ(warning.cancelled, 0);
    const QColor green(Qt::darkGreen);
    warning.hud.hide();
    EXPECT_TRUE(happens([&] { return seen().pixelColor(placeOnSway.center()) == green; }));
}
