// The devices nearby that could become keys. While the pointer is on them every row keeps its
// place.
#pragma once

#include "ui/qt/panel/disclosure.h"
#include "ui/qt/panel/panel_button.h"
#include "ui/qt/panel/panel_context.h"
#include "ui/qt/panel/section_view.h"
#include "ui/qt/panel/small_parts.h"
#include "ui/qt/panel/text.h"
#include "ui/qt/panel/toggles.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <memory>
#include <vector>

namespace wegslot {

class NearbyRowView final : public QWidget {
public:
    explicit NearbyRowView(const PanelContext& context);

    /// Empty and of the same height where the device has gone from its place.
    void show(const panel::NearbyPlace& place);
    using QWidget::show;

private:
    PanelContext context_;
    Uuid id_;
    SymbolView symbol_;
    Text name_;
    Text detail_;
    Text signal_;
    PanelButton choose_;
    Text obstacle_;
    bool hasObstacle_ = false;
    QVBoxLayout layout_{this};
    QHBoxLayout line_;
    QVBoxLayout texts_;
    QHBoxLayout obstacleLine_;
};

class NearbyListView final : public QWidget {
public:
    explicit NearbyListView(const PanelContext& context);

    void show(const panel::NearbyList& list);
    using QWidget::show;

private:
    PanelContext context_;
    Text placeholder_;
    std::vector<std::unique_ptr<NearbyRowView>> rows_;
    QVBoxLayout layout_{this};
};

/// What the group opens.
class NearbyContentView final : public QWidget {
public:
    explicit NearbyContentView(const PanelContext& context);

    void show(const panel::NearbyGroup& group);
    using QWidget::show;

protected:
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    NearbyContentView(const PanelContext& context, std::unique_ptr<NearbyListView> nameless);

    PanelContext context_;
    Text explanation_;
    NearbyListView named_;
    NearbyListView* namelessList_; ///< the disclosure's
    Disclosure nameless_;
    Divider divider_;
    CheckBox showOthers_;
    Text othersExplanation_;
    NearbyListView others_;
    QVBoxLayout layout_{this};
};

using NearbyView = SectionView<NearbyContentView, panel::NearbyGroup>;

} // namespace wegslot
