#include "ui/qt/text_scale.h"

#include <QFontInfo>
#include <QGuiApplication>

#include <algorithm>
#include <cmath>

namespace wegslot {

double textScale() {
    constexpr double largestDefault = 15;
    return std::max(1.0, QFontInfo(QGuiApplication::font()).pixelSize() / largestDefault);
}

double controlScale() { return std::min(textScale(), 1.5); }

Font scaledFont(const Font& font) {
    Font scaled = font;
    scaled.size = std::round(2 * font.size * textScale()) / 2;
    return scaled;
}

int scaledControl(int pixels) { return static_cast<int>(std::lround(pixels * controlScale())); }

} // namespace wegslot
