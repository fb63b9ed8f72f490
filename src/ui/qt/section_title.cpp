#include "ui/qt/section_title.h"

#include "ui/brand.h"
#include "ui/qt/brand_qt.h"
#include "ui/qt/text_scale.h"

#include <QLocale>
#include <QPalette>

#include <cmath>

namespace wegslot {
namespace {

QFont titleFont() {
    // A label cannot paint half pixels: the nearest whole one serves.
    const double size = std::round(scaledFont(brand::heading(11)).size);
    QFont font = qtFont(brand::heading(size, FontWeight::heavy)).font;
    font.setLetterSpacing(QFont::AbsoluteSpacing, 0.6);
    return font;
}

} // namespace

SectionTitle::SectionTitle(const std::string& text) {
    setTextFormat(Qt::PlainText);
    setFont(titleFont());
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, qtColor(brand::lila));
    setPalette(colors);
    setTitle(text);
}

void SectionTitle::setTitle(const std::string& text) {
    const QString plain = QString::fromStdString(text);
    // By the rules of the texts' language, not of the user's: a Turkish i stays one.
    setText(QLocale(QLocale::Dutch).toUpper(plain));
    setAccessibleName(plain);
}

} // namespace wegslot
