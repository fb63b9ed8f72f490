// The place of one key in the panel: its row or, for a moment after it was removed, what takes it
// back.
#pragma once

#include "ui/qt/panel/key_row_view.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace wegslot {

class RemovedRowView final : public QWidget {
public:
    explicit RemovedRowView(const PanelContext& context);

    void show(const panel::RemovedRow& row);
    using QWidget::show;

    [[nodiscard]] QWidget& putBack() { return putBack_; }

private:
    PanelContext context_;
    Uuid id_;
    Text name_;
    Text text_;
    PanelButton putBack_;
    QHBoxLayout layout_{this};
};

class KeyPlaceView final : public QWidget {
public:
    explicit KeyPlaceView(const PanelContext& context);

    void show(const panel::KeyPlace& place);
    using QWidget::show;

private:
    KeyRowView row_;
    RemovedRowView removed_;
    QVBoxLayout layout_{this};
};

} // namespace wegslot
