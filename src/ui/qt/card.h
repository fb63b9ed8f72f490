// The light surface on which things that belong together are laid: padding, round corners and, in
// the light scheme, a faint warm glow. The glow falls on the parent, so that the card itself takes
// the full width it is given.
#pragma once

#include "base/observable.h"
#include "ui/qt/soft_shadow.h"
#include "ui/scheme.h"

#include <QPointer>
#include <QVBoxLayout>
#include <QWidget>

#include <memory>

namespace wegslot {

class Card final : public QWidget {
public:
    static constexpr int padding = 12;
    static constexpr double cornerRadius = 14;

    /// Takes the content over. `scheme` must outlive the card.
    Card(std::unique_ptr<QWidget> content, const Observable<Scheme>& scheme);
    ~Card() override;

    [[nodiscard]] static Color fill(Scheme scheme);
    [[nodiscard]] static SoftShadow shadow(Scheme scheme);

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void followParent();
    void glowChanged(const QRect& place);

    const Observable<Scheme>& scheme_;
    std::unique_ptr<QWidget> content_;
    QVBoxLayout layout_;
    QPointer<QWidget> ground_; ///< the parent, on which the glow is painted
    Subscription changes_;
};

} // namespace wegslot
