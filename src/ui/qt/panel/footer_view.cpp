#include "ui/qt/panel/footer_view.h"

#include "ui/qt/panel/text.h"

namespace wegslot {
namespace {

constexpr int paddingOfBare = 6;

ButtonLook bare(double symbolSide = 0) {
    return {.shape = ButtonLook::Shape::bare,
            .font = brand::body(13),
            .paddingAcross = paddingOfBare,
            .paddingDown = 4,
            .symbolSide = symbolSide};
}

} // namespace

FooterView::FooterView(const PanelContext& context)
    : context_(context),
      lock_(context.images, {.shape = ButtonLook::Shape::capsule,
                             .font = brand::heading(12.5),
                             .paddingAcross = 12,
                             .paddingDown = 6,
                             .symbolSide = 14}),
      pause_(
          MenuButton::Frame::none,
          [this](int number) { context_.model.pause(pauses_[static_cast<std::size_t>(number)]); }),
      resume_(context.images, bare()),
      log_(context.images, bare(17)),
      quit_(context.images, bare()) {
    layout_.setContentsMargins(16, 14, 16 - paddingOfBare, 12); // the last word in line
    layout_.setSpacing(textScale() > 1 ? 0 : 8);                // larger text needs the room
    layout_.addWidget(&lock_);
    layout_.addWidget(&pause_);
    layout_.addWidget(&resume_);
    layout_.addStretch(1);
    layout_.addWidget(&log_);
    layout_.addWidget(&quit_);
    PanelModel& model = context_.model;
    connect(&lock_, &QAbstractButton::clicked, this, [&model] { model.lockNow(); });
    connect(&resume_, &QAbstractButton::clicked, this, [&model] { model.resume(); });
    connect(&log_, &QAbstractButton::clicked, this, [&model] { model.openLog(); });
    connect(&quit_, &QAbstractButton::clicked, this, [&model] { model.quit(); });
}

void FooterView::show(const panel::Footer& footer) {
    const PanelColors colors = context_.colors();
    const PanelButton::Colors plain{.ink = colors.text, .focus = colors.focus};
    // On the dark panel the capsule has the colour of what is around it.
    const bool isDark = context_.scheme.get() == Scheme::dark;
    lock_.show(footer.lock, {.ink = brand::cream,
                             .ground = brand::navy,
                             .outline = brand::cream.withOpacity(isDark ? 0.4 : 0),
                             .focus = brand::orange});
    if (const auto* const menu = std::get_if<panel::PauseMenu>(&footer.pause)) {
        std::vector<std::string> texts;
        pauses_.clear();
        for (const auto& entry : menu->entries) {
            texts.push_back(entry.text);
            pauses_.push_back(entry.duration);
        }
        pause_.show(menu->text, menu->text, texts, -1, colors);
    } else {
        resume_.show(std::get<panel::Button>(footer.pause), plain);
    }
    pause_.setVisible(std::holds_alternative<panel::PauseMenu>(footer.pause));
    resume_.setVisible(std::holds_alternative<panel::Button>(footer.pause));
    log_.show(footer.log, plain);
    quit_.show(footer.quit, plain);
}

} // namespace wegslot
