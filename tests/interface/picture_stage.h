// A Qt application without a screen that looks the same on every machine: one font for all, and
// nothing of the user's settings. For pictures of windows.
#pragma once

#include "base/text.h"
#include "tests/support/environment.h"
#include "tests/support/temporary_folder.h"

#include <QApplication>
#include <QFont>
#include <QFontInfo>
#include <QImage>
#include <QPixmap>
#include <QWidget>

#include <memory>
#include <string>

namespace wegslot {

class PictureStage {
public:
    /// Where the Debian package has it.
    static constexpr auto fontFolder = "/usr/share/fonts/truetype/liberation2";
    static constexpr auto fontFamily = "Liberation Sans";

    /// `scale`: device pixels to one of ours, as a screen of that density has them.
    explicit PictureStage(double scale = 1)
        : environment_({{"QT_QPA_PLATFORM", "offscreen"},
                        {"QT_SCALE_FACTOR", decimal(scale)},
                        {"FONTCONFIG_FILE", fontConfiguration()},
                        {"XDG_RUNTIME_DIR", folder_.path().string()},
                        {"DISPLAY", ""},
                        {"WAYLAND_DISPLAY", ""}}) {
        application_ = std::make_unique<QApplication>(argc_, static_cast<char**>(arguments_));
        QFont font(fontFamily);
        font.setPixelSize(14); // between what the desktops set
        QApplication::setFont(font);
    }

    /// Whether the font is the one that the references were made with.
    [[nodiscard]] static bool hasFont() { return QFontInfo(QFont()).family() == fontFamily; }

    /// What `window`, which is shown, looks like once everything under way has been done.
    [[nodiscard]] static QImage picture(QWidget& window) {
        QCoreApplication::processEvents();
        return window.grab().toImage();
    }

private:
    /// Fontconfig sees this one font only, and renders it in one way.
    [[nodiscard]] std::string fontConfiguration() const {
        folder_.write("fonts.conf", std::string(R"(<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "fonts.dtd">
<fontconfig>
  <dir>)") + fontFolder + R"(</dir>
  <cachedir>)" + folder_.path().string() +
                                        R"(</cachedir>
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
