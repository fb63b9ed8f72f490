// The one button of the warning. To a screen reader it is an ordinary button.
#pragma once

#include <QAbstractButton>

namespace wegslot {

class CapsuleButton final : public QAbstractButton {
public:
    explicit CapsuleButton(QWidget& parent);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace wegslot
