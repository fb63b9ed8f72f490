#include "ui/qt/tray_painter.h"

#include "ui/qt/symbol_images.h"

#include <cstddef>

namespace wegslot {

TrayPainter trayPainter(const SymbolImages& images) {
    return [&images](const std::string& symbol, const Color& color, int side) {
        const QImage image =
            images.image(symbol, color, side).convertToFormat(QImage::Format_ARGB32);
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
