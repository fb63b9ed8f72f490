// The settings of the panel, and the version at their end.
#pragma once

#include "ui/qt/panel/panel_button.h"
#include "ui/qt/panel/panel_context.h"
#include "ui/qt/panel/section_view.h"
#include "ui/qt/panel/text.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <functional>
#include <memory>
#include <vector>

namespace wegslot {

class VersionView final : public QWidget {
public:
    explicit VersionView(const PanelContext& context);

    void show(const panel::VersionBlock& block);
    using QWidget::show;

private:
    PanelContext context_;
    Text version_;
    Text status_;
    PanelButton check_;
    QHBoxLayout layout_{this};
    QVBoxLayout texts_;
};

/// The list has always the same parts: each gets its widget when it is shown first.
class SettingsContentView final : public QWidget {
public:
    explicit SettingsContentView(const PanelContext& context);

    void show(const panel::SettingsGroup& group);
    using QWidget::show;

private:
    using Show = std::function<void(const panel::SettingsPart&)>;

    void add(const panel::SettingsPart& part);
    [[nodiscard]] Show viewOf(const panel::SettingsPart& part);

    PanelContext context_;
    std::vector<std::unique_ptr<QWidget>> widgets_;
    std::vector<Show> shows_;
    QVBoxLayout layout_{this};
};

using SettingsView = SectionView<SettingsContentView, panel::SettingsGroup>;

} // namespace wegslot
