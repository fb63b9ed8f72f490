// That the warning is read whole in every language, and what it looks like in two of them.

#include "app/linux/user_language.h"
#include "hud/qt/warning_picture.h"
#include "monitor/away_message.h"
#include "tests/interface/picture.h"
#include "tests/interface/picture_stage.h"
#include "tests/interface/shown_panel.h"

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>

#include <array>
#include <optional>
#include <string>
#include <vector>

using namespace wegslot;

namespace {

constexpr std::array locales{"C", "de", "en", "fr", "nl"};

/// Texts from here on in the language of a locale, as a program in the build folder finds them.
class InALanguage {
public:
    explicit InALanguage(const std::string& locale)
        : language_(
              [&locale](const char* name) {
                  return std::string(name) == "LANG" ? locale : std::string();
              },
              WEGSLOT_BUILD_FOLDER "/CMakeCache.txt") {}

private:
    UserLanguage language_;
};

/// What the panel shows beside the ring and the button.
QImage textsWith(const std::string& message) {
    QImage image(picture::size, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    picture::paintStill(painter, QString::fromStdString(message));
    return image;
}

/// The rightmost column that a text is painted in, short of the panel's edge.
int rightmostPainted(const QImage& image) {
    const int middle = image.height() / 2;
    const QRgb ground = image.pixel(image.width() - 4, middle);
    for (int x = image.width() - 4; x > picture::ringBounds.right(); --x)
        for (int y = middle - 30; y <= middle + 30; ++y)
            if (image.pixel(x, y) != ground) return x;
    return 0;
}

/// Whether a text is seen to its last letter: another one there looks different.
bool isSeenToItsEnd(const std::string& message) {
    std::string other = message;
    other.back() = other.back() == 'W' ? 'i' : 'W';
    return textsWith(message) != textsWith(other);
}

struct WarningInALanguage : testing::TestWithParam<PictureStage::Face> {
    PictureStage stage{1, GetParam()};

    void SetUp() override {
        ASSERT_TRUE(PictureStage::hasFont(GetParam()))
            << "install the packages of tools/packages/test";
    }
};

INSTANTIATE_TEST_SUITE_P(InAFont, WarningInALanguage,
                         testing::Values(PictureStage::ordinary, PictureStage::wide));

} // namespace

TEST_P(WarningInALanguage, ItsTextsAreReadWholeAndKeepClearOfTheButton) {
    constexpr int gap = 8;
    for (const char* const locale : locales) {
        const InALanguage language(locale);
        // A sentence with a name or two of usual length is read to its end.
        for (const auto& names :
             std::vector<std::vector<Message>>{{}, {"Sleutelbos"}, {"Sleutelbos", "Horloge"}}) {
            const std::string message = awayMessage(names).translated();
            EXPECT_TRUE(isSeenToItsEnd(message)) << locale << ": " << message;
            const int right = rightmostPainted(textsWith(message));
            EXPECT_GT(right, picture::ringBounds.right()) << locale;
            EXPECT_LT(right, picture::buttonFrame().left() - gap) << locale << ": " << message;
        }
        EXPECT_GE(picture::buttonFrame().left(), picture::size.width() / 2) << locale;
    }
}

TEST_P(WarningInALanguage, ATextThatIsCutWouldBeNoticed) {
    EXPECT_FALSE(isSeenToItsEnd(std::string(200, 'm')));
}

TEST(WarningPictures, InEnglishAndGermanLooksLikeItsPicture) {
    const PictureStage stage;
    ASSERT_TRUE(PictureStage::hasFont()) << "install the packages of tools/packages/test";
    for (const char* const locale : {"en", "de"}) {
        const InALanguage language(locale);
        ShownPanel warning;
        warning.show(awayMessage(std::vector<Message>{translated("Telefoon")}).translated());
        EXPECT_TRUE(looksLike(PictureStage::picture(ShownPanel::panel()),
                              std::string("warning-") + locale + "-1x"));
    }
}
