// The light surface on which things that belong together are laid: padding, round corners and, in
// the light scheme, a faint warm glow. The glow falls on what the card lies on, so that the card
// itself takes the full width it is given.
#pragma once

#include "base/observable.h"
#include "ui/qt/soft_shadow.h"
#include "ui/scheme.h"

#include <QVBoxLayout>
#include <QWidget>

#include <memory>

namespace wegslot {

/// What cards lie on, however many widgets are in between: on the card's parent alone the glow
/// would be cut off along that one's edges.
class CardGround final : public QWidget {
protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

class Card final : public QWidget {
public:
    static constexpr int padding = 12;
    static constexpr double cornerRadius = 14;

    /// Takes the content over. `scheme` must outlive the card.
    Card(std::unique_ptr<QWidget> content, const Observable<Scheme>& scheme);
    ~Card() override;

    [[nodiscard]] static SoftShadow shadow(Scheme scheme);
    [[nodiscard]] SoftShadow shadow() const { return shadow(scheme_.get()); }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void glowChanged() const;

    const Observable<Scheme>& scheme_;
    std::unique_ptr<QWidget> content_;
    QVBoxLayout layout_;
    Subscription changes_;
};

} // namespace wegslot
