#include "ui/qt/palette_scheme.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

namespace wegslot {
namespace {

Scheme current() {
    const QPalette palette = QGuiApplication::palette();
    const int text = palette.color(QPalette::WindowText).lightness();
    const int ground = palette.color(QPalette::Window).lightness();
    return text > ground ? Scheme::dark : Scheme::light;
}

} // namespace

PaletteScheme::PaletteScheme() : scheme_(current()) { qApp->installEventFilter(this); }

PaletteScheme::~PaletteScheme() {
    if (qApp != nullptr) qApp->removeEventFilter(this);
}

bool PaletteScheme::eventFilter(QObject* watched, QEvent* event) {
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange) {
        const Scheme now = current();
        if (now != scheme_.get()) scheme_.set(now);
    }
    return false;
}

} // namespace wegslot
