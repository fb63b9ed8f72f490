// The calendar and the clock of the user's place, in the user's language.
#pragma once

#include "insight/zone.h"

#include <QLocale>

namespace wegslot::insight {

[[nodiscard]] Zone localZone(const QLocale& language = QLocale::system());

} // namespace wegslot::insight
