#include "ui/qt/symbol_images.h"

#include "ui/qt/brand_qt.h"

#include <QDir>
#include <QPainter>
#include <QSvgRenderer>

#include <algorithm>
#include <cmath>
#include <numbers>

// Of a static library nothing is linked that nobody names.
static void loadIcons() { Q_INIT_RESOURCE(icons); }

namespace wegslot {
namespace {

const QString folder = QStringLiteral(":/wegslot/icons/");
const QString suffix = QStringLiteral(".svg");

} // namespace

SymbolImages::SymbolImages() { loadIcons(); }

SymbolImages::~SymbolImages() = default;

QImage SymbolImages::image(std::string_view symbol, const Color& color, double side,
                           double ratio) const {
    const int pixels = static_cast<int>(std::round(side * ratio));
    QSvgRenderer* const shape = renderer(symbol);
    if (shape == nullptr || pixels <= 0) return {};
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    shape->render(&painter, image.rect());
    // The file says where something is, not in which colour.
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), qtColor(color));
    painter.end();
    image.setDevicePixelRatio(ratio);
    return image;
}

QImage SymbolImages::outlined(std::string_view symbol, const Color& color, const Color& outline,
                              int side) const {
    const QImage around = image(symbol, outline, side);
    if (around.isNull()) return {};
    QImage whole(side, side, QImage::Format_ARGB32_Premultiplied);
    whole.fill(Qt::transparent);
    // The shape, moved by the line's width in every direction.
    const double width = std::max(1.0, side / 24.0);
    constexpr int directions = 16;
    QPainter painter(&whole);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (int i = 0; i < directions; ++i) {
        const double angle = 2 * std::numbers::pi * i / directions;
        painter.drawImage(QPointF(width * std::cos(angle), width * std::sin(angle)), around);
    }
    painter.drawImage(QPoint(), image(symbol, color, side));
    return whole;
}

std::vector<std::string> SymbolImages::names() {
    loadIcons();
    std::vector<std::string> names;
    for (const QString& file : QDir(folder).entryList(QDir::Files, QDir::Name))
        names.push_back(file.chopped(suffix.size()).toStdString());
    std::ranges::sort(names);
    return names;
}

QSvgRenderer* SymbolImages::renderer(std::string_view symbol) const {
    const auto known = renderers_.find(symbol);
    if (known != renderers_.end()) return known->second.get();
    const QString file =
        folder + QString::fromUtf8(symbol.data(), static_cast<qsizetype>(symbol.size())) + suffix;
    if (!QFile::exists(file)) return nullptr;
    auto loaded = std::make_unique<QSvgRenderer>(file);
    if (!loaded->isValid()) return nullptr;
    return renderers_.emplace(symbol, std::move(loaded)).first->second.get();
}

} // namespace wegslot
