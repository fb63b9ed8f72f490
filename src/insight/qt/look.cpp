#include "insight/qt/look.h"

#include "base/translation.h"
#include "ui/contrast.h"
#include "ui/qt/brand_qt.h"
#include "ui/qt/text_scale.h"
#include "ui/symbols.h"

#include <cmath>
#include <variant>

namespace wegslot::insight {
namespace {

Color brandColorOf(Kind kind) {
    switch (kind) {
    case Kind::warning:
        return brand::orange;
    case Kind::lock:
    case Kind::lockConfirmed:
        return brand::navy;
    case Kind::lockFailed:
        return brand::danger;
    case Kind::unlock:
        return brand::success;
    case Kind::pause:
    case Kind::phase:
    case Kind::key:
    case Kind::settings:
    case Kind::radio:
    case Kind::unknown:
        break;
    }
    return brand::lila;
}

struct ShortWord {
    std::string operator()(const phase::BluetoothUnavailable&) const {
        return translated("Geen Bluetooth");
    }
    std::string operator()(const phase::Paused&) const { return translated("Pauze"); }
    std::string operator()(const phase::Snoozed&) const { return translated("Pauze"); }
    std::string operator()(const phase::Warning&) const { return translated("Waarschuwing"); }
    std::string operator()(const phase::Disabled&) const { return translated("Uitgeschakeld"); }
    std::string operator()(const phase::NoKeys&) const { return translated("Geen sleutels"); }
    std::string operator()(const phase::WaitingForReturn&) const {
        return translated("Wacht op een sleutel");
    }
    std::string operator()(const phase::Present&) const { return translated("In de buurt"); }
    std::string operator()(const phase::Leaving&) const { return translated("Zwak"); }
    std::string operator()(const phase::Locked&) const { return translated("Gelockt"); }
};

} // namespace

std::string_view symbolOf(Kind kind) {
    switch (kind) {
    case Kind::warning:
        return symbols::walking;
    case Kind::lock:
    case Kind::lockConfirmed:
        return symbols::lock;
    case Kind::lockFailed:
        return symbols::lockInTrouble;
    case Kind::unlock:
        return symbols::openLock;
    case Kind::pause:
        return symbols::pause;
    case Kind::phase:
    case Kind::key:
        return symbols::phone;
    case Kind::settings:
        return symbols::log;
    case Kind::radio:
        return symbols::radio;
    case Kind::unknown:
        break;
    }
    return symbols::hourglass;
}

Color inkOf(Kind kind, const PanelColors& colors) {
    const Color color = brandColorOf(kind);
    return contrast(color, colors.card) >= leastContrast ? color : over(colors.quiet, colors.card);
}

Color colorOf(KeyState state) {
    switch (state) {
    case KeyState::near:
        return brand::success;
    case KeyState::leaving:
        return brand::orange;
    case KeyState::away:
        break;
    }
    return brand::lila;
}

std::string shortWord(const Phase& phase) { return std::visit(ShortWord{}, phase); }

QFont fontOf(double size, FontWeight weight) {
    const double whole = std::round(scaledFont(brand::body(size)).size);
    return qtFont(brand::body(whole, weight)).font;
}

} // namespace wegslot::insight
