// A Qt application without a screen that looks the same on every machine: one font for all, and
// nothing of the user's settings. For pictures of windows.
#pragma once

#include "base/text.h"
#include "tests/support/environment.h"
#include "tests/support/temporary_folder.h"

#include <QApplication>
#include <QFont>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QImage>
#include <QPixmap>
#include <QWidget>

#include <cmath>
#include <filesystem>
#include <memory>
#include <ostream>
#include <string>

namespace wegslot {

class PictureStage {
public:
    /// A font, and where its Debian package has it.
    struct Face {
        const char* family;
        const char* folder;
        const char* regular;
        const char* bold;

        friend std::ostream& operator<<(std::ostream& out, const Face& face) {
            return out << face.family;
        }
    };

    /// Debian 12 has its second version in a folder of its own, and may have the first in the
    /// other.
    [[nodiscard]] static const char* liberation() {
        constexpr auto second = "/usr/share/fonts/truetype/liberation2";
        return std::filesystem::exists(second) ? second : "/usr/share/fonts/truetype/liberation";
    }

    static inline const Face ordinary{"Liberation Sans", liberation(), "LiberationSans-Regular.ttf",
                                      "LiberationSans-Bold.ttf"};
    /// An eighth wider: what has room in this one has it in the fonts of most desktops.
    static constexpr Face wide{"DejaVu Sans", "/usr/share/fonts/truetype/dejavu", "DejaVuSans.ttf",
                               "DejaVuSans-Bold.ttf"};

    /// GNOME's, in which a 1 is narrower than a 4.
    static constexpr Face unequalDigits{"Cantarell", "/usr/share/fonts/opentype/cantarell",
                                        "Cantarell-Regular.otf", "Cantarell-Bold.otf"};

    /// `scale`: device pixels to one of ours, as a screen of that density has them.
    explicit PictureStage(double scale = 1, const Face& face = ordinary)
        : environment_({{"QT_QPA_PLATFORM", "offscreen"},
                        {"QT_SCALE_FACTOR", decimal(scale)},
                        {"FONTCONFIG_FILE", fontConfiguration(face)},
                        {"XDG_RUNTIME_DIR", folder_.path().string()},
                        {"DISPLAY", ""},
                        {"WAYLAND_DISPLAY", ""}}) {
        application_ = std::make_unique<QApplication>(argc_, static_cast<char**>(arguments_));
        QFont font(face.family);
        font.setPixelSize(14); // between what the desktops set
        QApplication::setFont(font);
    }

    /// Whether the font is the one that the references were made with.
    [[nodiscard]] static bool hasFont(const Face& face = ordinary) {
        return QFontInfo(QFont()).family() == face.family;
    }

    /// Whether Qt rounds the heights of fonts, as 6.8 does at one device pixel to one of ours,
    /// where 6.4 did not: some rows have a pixel less in height than in the references.
    [[nodiscard]] static bool roundsHeights() {
        QFont font;
        font.setPixelSize(11);
        const double ascent = QFontMetricsF(font).ascent();
        return ascent == std::floor(ascent);
    }

    /// What `window`, which is shown, looks like once everything under way has been done.
    [[nodiscard]] static QImage picture(QWidget& window) {
        QCoreApplication::processEvents();
        return window.grab().toImage();
    }

private:
    /// Fontconfig sees this one font only, and renders it in one way.
    [[nodiscard]] std::string fontConfiguration(const Face& face) const {
        const std::string fonts = face.folder;
        folder_.write("fonts.conf", R"(<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "fonts.dtd">
<fontconfig>
  <dir>)" + fonts + R"(</dir>
  <cachedir>)" + folder_.path().string() +
                                        R"(</cachedir>
  <selectfont>
    <rejectfont><glob>*</glob></rejectfont>
    <acceptfont><glob>)" + fonts + "/" + face.regular +
                                        R"(</glob></acceptfont>
    <acceptfont><glob>)" + fonts + "/" + face.bold +
                                        R"(</glob></acceptfont>
  </selectfont>
  <match target="font">
    <edit name="antialias" mode="assign"><bool>true</bool></edit>
    <edit name="hinting" mode="assign"><bool>false</bool></edit>
    <edit name="rgba" mode="assign"><const>none</const></edit>
  </match>
</fontconfig>
)");
        return (folder_.path() / "fonts.conf").string();
    }

    TemporaryFolder folder_;
    Environment environment_;
    int argc_ = 1;
    char name_[5] = "test";
    char* arguments_[2] = {static_cast<char*>(name_), nullptr};
    std::unique_ptr<QApplication> application_;
};

} // namespace wegslot
