#include "ui/qt/soft_shadow.h"

#include "ui/qt/brand_qt.h"

#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QPixmapCache>

#include <algorithm>
#include <cmath>
#include <vector>

namespace wegslot {
namespace {

using Row = std::vector<double>;

/// The weights of a blur that ends after `reach` pixels.
Row weights(int reach) {
    const double deviation = std::max(reach / 2.0, 0.5);
    Row row;
    double sum = 0;
    for (int i = -reach; i <= reach; ++i) {
        row.push_back(std::exp(-i * i / (2 * deviation * deviation)));
        sum += row.back();
    }
    for (double& weight : row)
        weight /= sum;
    return row;
}

/// Blurs the opacities of a square along its rows and gives it with rows and columns exchanged,
/// so that twice is the whole blur.
Row blurred(const Row& square, int side, const Row& weights) {
    const int reach = static_cast<int>(weights.size() / 2);
    Row result(square.size());
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            double sum = 0;
            for (int i = std::max(-reach, -x); i <= std::min(reach, side - 1 - x); ++i)
                sum += weights[static_cast<std::size_t>(i + reach)] *
                       square[static_cast<std::size_t>(y * side + x + i)];
            result[static_cast<std::size_t>(x * side + y)] = sum;
        }
    return result;
}

/// The four corners of the shadow with one pixel between them, which stretches.
QPixmap tile(const Color& color, int corner, int reach) {
    const QString key = QStringLiteral("wegslot-shadow-%1-%2-%3")
                            .arg(qtColor(color).name(QColor::HexArgb))
                            .arg(corner)
                            .arg(reach);
    QPixmap known;
    if (QPixmapCache::find(key, &known)) return known;

    const int side = 2 * (corner + 2 * reach) + 1;
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    painter.drawRoundedRect(QRectF(image.rect()).adjusted(reach, reach, -reach, -reach), corner,
                            corner);
    painter.end();

    Row opacity;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            opacity.push_back(qAlpha(image.pixel(x, y)));
    const Row blur = weights(reach);
    opacity = blurred(blurred(opacity, side, blur), side, blur);
    const QColor full = qtColor(color);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const double part = opacity[static_cast<std::size_t>(y * side + x)] * color.opacity;
            image.setPixel(x, y,
                           qPremultiply(qRgba(full.red(), full.green(), full.blue(),
                                              static_cast<int>(std::round(part)))));
        }
    const QPixmap made = QPixmap::fromImage(image);
    QPixmapCache::insert(key, made);
    return made;
}

} // namespace

QRectF SoftShadow::reach(const QRectF& rectangle) const {
    return rectangle.translated(0, offsetDown)
        .adjusted(-blurRadius, -blurRadius, blurRadius, blurRadius);
}

void SoftShadow::paint(QPainter& painter, const QRectF& rectangle) const {
    if (color.opacity <= 0) return;
    const double ratio = painter.device()->devicePixelRatioF();
    const int reachPixels = static_cast<int>(std::ceil(blurRadius * ratio));
    const int cornerPixels = static_cast<int>(std::round(cornerRadius * ratio));
    const QPixmap pixmap = tile(color, cornerPixels, reachPixels);

    // Nine pieces: corners as they are, edges and middle stretched from the pixel between them.
    const double piece = (pixmap.width() - 1) / 2.0; // of the tile
    const QRectF target = reach(rectangle);
    const double size = std::min({piece / ratio, target.width() / 2, target.height() / 2});
    const std::vector<double> source{0, piece, piece + 1, pixmap.width() + 0.0};
    const std::vector<double> columns{target.left(), target.left() + size, target.right() - size,
                                      target.right()};
    const std::vector<double> rows{target.top(), target.top() + size, target.bottom() - size,
                                   target.bottom()};
    for (std::size_t y = 0; y < 3; ++y)
        for (std::size_t x = 0; x < 3; ++x)
            painter.drawPixmap(
                QRectF(QPointF(columns[x], rows[y]), QPointF(columns[x + 1], rows[y + 1])), pixmap,
                QRectF(QPointF(source[x], source[y]), QPointF(source[x + 1], source[y + 1])));
}

} // namespace wegslot
