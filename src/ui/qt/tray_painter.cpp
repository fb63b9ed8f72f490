#include "ui/qt/tray_painter.h"

#include "ui/qt/symbol_images.h"

#include <cstddef>

namespace wegslot {

QImage trayImage(const SymbolImages& images, std::string_view symbol, const Color& color,
                 int side) {
    const bool isDark = color == brand::navy;
    return images.outlined(symbol, color, isDark ? brand::white : brand::navy, side);
}

TrayPainter trayPainter(const SymbolImages& images) {
    return [&images](const std::string& symbol, const Color& color, int side) {
        const QImage image =
            trayImage(images, symbol, color, side).convertToFormat(QImage::Format_ARGB32);
        TrayPicture picture{.side = side};
        picture.argb.reserve(static_cast<std::size_t>(image.width() * image.height()) * 4);
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) {
                const QRgb pixel = image.pixel(x, y);
                for (const int part : {qAlpha(pixel), qRed(pixel), qGreen(pixel), qBlue(pixel)})
                    picture.argb.push_back(static_cast<std::uint8_t>(part));
            }
        return picture;
    };
}

} // namespace wegslot
