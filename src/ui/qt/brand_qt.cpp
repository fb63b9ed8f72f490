#include "ui/qt/brand_qt.h"

#include <QGuiApplication>
#include <QString>

#include <cmath>

namespace wegslot {

QColor qtColor(const Color& color) {
    QColor result(color.red, color.green, color.blue);
    result.setAlphaF(static_cast<float>(color.opacity));
    return result;
}

QtFont qtFont(const Font& font) {
    QtFont result{.font = QGuiApplication::font()};
    if (!font.family.empty()) {
        // Where it is not installed, the interface font takes its place before any other does.
        result.font.setFamilies(QStringList{QString::fromStdString(font.family)} +
                                result.font.families());
    }
    const bool isWhole = font.size == std::floor(font.size);
    result.scale = isWhole ? 1 : 0.5;
    result.font.setPixelSize(static_cast<int>(std::lround(font.size / result.scale)));
    result.font.setWeight(static_cast<QFont::Weight>(font.weight));
    result.font.setItalic(false);
    return result;
}

} // namespace wegslot
