#include "ui/qt/panel/settings_view.h"

#include "ui/qt/panel/small_parts.h"
#include "ui/qt/panel/stepper_view.h"
#include "ui/qt/panel/toggles.h"

#include <utility>
#include <variant>

namespace wegslot {

VersionView::VersionView(const PanelContext& context)
    : context_(context),
      version_(brand::body(13), Text::Fit::elided),
      status_(brand::body(11), Text::Fit::wrapped),
      check_(context.images, {.shape = ButtonLook::Shape::rounded,
                              .font = brand::body(12),
                              .paddingAcross = 10,
                              .paddingDown = 4}) {
    layout_.setContentsMargins(0, 0, 0, 0);
    layout_.setSpacing(8);
    texts_.setSpacing(1);
    texts_.addWidget(&version_);
    texts_.addWidget(&status_);
    layout_.addLayout(&texts_, 1);
    layout_.addWidget(&check_);
    connect(&check_, &QAbstractButton::clicked, this, [this] { context_.model.checkForUpdates(); });
}

void VersionView::show(const panel::VersionBlock& block) {
    const PanelColors colors = context_.colors();
    version_.show(block.version, colors.text);
    status_.show(block.status, colors.quiet);
    status_.setVisible(!block.status.empty());
    check_.show(block.check, {.ink = colors.text, .ground = colors.control, .focus = colors.focus});
}

SettingsContentView::SettingsContentView(const PanelContext& context) : context_(context) {
    layout_.setContentsMargins(0, 0, 0, 0);
    layout_.setSpacing(10);
}

void SettingsContentView::show(const panel::SettingsGroup& group) {
    while (shows_.size() < group.parts.size())
        add(group.parts[shows_.size()]);
    for (std::size_t i = 0; i < group.parts.size(); ++i)
        shows_[i](group.parts[i]);
}

void SettingsContentView::add(const panel::SettingsPart& part) {
    shows_.push_back(viewOf(part));
    layout_.addWidget(widgets_.back().get());
}

SettingsContentView::Show SettingsContentView::viewOf(const panel::SettingsPart& part) {
    PanelModel& model = context_.model;
    if (std::holds_alternative<panel::Stepper>(part)) {
        auto view = std::make_unique<StepperView>(StepperView::Asked{
            .step = [&model](panel::Delay delay, panel::Step step) { model.step(delay, step); },
            .enter = [&model](panel::Delay delay,
                              const std::string& typed) { model.enter(delay, typed); }});
        StepperView* const shown = view.get();
        widgets_.push_back(std::move(view));
        return [this, shown](const panel::SettingsPart& now) {
            shown->show(std::get<panel::Stepper>(now), context_.colors());
        };
    }
    if (const auto* const toggle = std::get_if<panel::Toggle>(&part)) {
        auto view = std::make_unique<CheckBox>();
        CheckBox* const shown = view.get();
        widgets_.push_back(std::move(view));
        connect(shown, &QAbstractButton::clicked, this,
                [&model, choice = toggle->choice](bool on) { model.set(choice, on); });
        return [this, shown](const panel::SettingsPart& now) {
            shown->show(std::get<panel::Toggle>(now), context_.colors());
        };
    }
    if (std::holds_alternative<panel::VersionBlock>(part)) {
        auto view = std::make_unique<VersionView>(context_);
        VersionView* const shown = view.get();
        widgets_.push_back(std::move(view));
        return [shown](const panel::SettingsPart& now) {
            shown->show(std::get<panel::VersionBlock>(now));
        };
    }
    auto view = std::make_unique<Divider>();
    Divider* const shown = view.get();
    widgets_.push_back(std::move(view));
    return [this, shown](const panel::SettingsPart&) { shown->show(context_.colors().divider); };
}

} // namespace wegslot
