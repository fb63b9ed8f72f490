// Draws every symbol of the interface in three sizes, light and dark, on one sheet, for the eye.
// Usage: icon_sheet FILE.png

#include "tests/support/offscreen.h"
#include "ui/qt/brand_qt.h"
#include "ui/qt/symbol_images.h"
#include "ui/symbols.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <array>
#include <cstdio>
#include <cstdlib>

using namespace wegslot;

namespace {

constexpr std::array sizes{16, 24, 48};
constexpr int rowHeight = 64;
constexpr int half = 190; // of the light or the dark ground

void drawHalf(QPainter& painter, const SymbolImages& images, int left, const Color& ground,
              const Color& ink) {
    painter.fillRect(left, 0, half, rowHeight * static_cast<int>(symbols::all.size()),
                     qtColor(ground));
    for (std::size_t row = 0; row < symbols::all.size(); ++row) {
        int x = left + 24;
        for (const int size : sizes) {
            const int y = static_cast<int>(row) * rowHeight + (rowHeight - size) / 2;
            painter.drawImage(x, y, images.image(symbols::all[row], ink, size));
            x += size + 28;
        }
    }
}

void drawNames(QPainter& painter) {
    painter.setPen(qtColor(brand::navy));
    painter.setFont(qtFont(brand::body(13)).font);
    for (std::size_t row = 0; row < symbols::all.size(); ++row)
        painter.drawText(QRect(2 * half + 20, static_cast<int>(row) * rowHeight, 260, rowHeight),
                         Qt::AlignVCenter, QString::fromUtf8(symbols::all[row].data()));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: icon_sheet FILE.png\n");
        return EXIT_FAILURE;
    }
    const Offscreen<QGuiApplication> application;
    const SymbolImages images;
    QImage sheet(2 * half + 280, rowHeight * static_cast<int>(symbols::all.size()),
                 QImage::Format_RGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    drawHalf(painter, images, 0, brand::cream, brand::navy);
    drawHalf(painter, images, half, brand::navy, brand::white);
    drawNames(painter);
    painter.end();
    return sheet.save(QString::fromLocal8Bit(argv[1])) ? EXIT_SUCCESS : EXIT_FAILURE;
}
