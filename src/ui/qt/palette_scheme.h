// Light or dark by the colours that Qt gives windows, which follow the desktop's theme where Qt
// knows it.
#pragma once

#include "base/observable.h"
#include "ui/scheme.h"

#include <QObject>

namespace wegslot {

class PaletteScheme final : public QObject {
public:
    /// There must be a QGuiApplication.
    PaletteScheme();
    ~PaletteScheme() override;

    /// Tells of changes only.
    [[nodiscard]] const Observable<Scheme>& scheme() const { return scheme_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Observable<Scheme> scheme_;
};

} // namespace wegslot
