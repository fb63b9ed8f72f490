#include "app/qt/menu_panel.h"

#include "platform/linux/display_environment.h"
#include "ui/qt/local_clock_time.h"

#include <QGuiApplication>
#include <QScreen>

namespace wegslot {
namespace {

/// Where the desktop says it was clicked, if that can be: some say zeros. In Qt's pixels, of which
/// a dense screen has fewer than dots.
std::optional<QPoint> placeOf(const TrayClick& click) {
    const QScreen* const screen = QGuiApplication::primaryScreen();
    if (!click.at || *click.at == TrayPoint{} || screen == nullptr) return std::nullopt;
    return QPoint(click.at->x, click.at->y) / screen->devicePixelRatio();
}

/// For the window that is shown next.
class ActivationToken {
public:
    explicit ActivationToken(const std::string& token) {
        if (!token.empty()) qputenv(variable, token.c_str());
    }
    ActivationToken(const ActivationToken&) = delete;
    ActivationToken& operator=(const ActivationToken&) = delete;
    ~ActivationToken() { qunsetenv(variable); }

private:
    static constexpr auto variable = "XDG_ACTIVATION_TOKEN";
};

} // namespace

PanelModel::Objects panelObjects(const MenuPanel::Parts& parts) {
    AppModel& model = parts.model;
    Updater& updater = model.updater();
    return {.settings = model.settings(),
            .scanner = model.scanner(),
            .monitor = model.monitor(),
            .updates = {.state = updater.state(),
                        .currentVersion = updater.currentVersion(),
                        .isConfigured = updater.isConfigured(),
                        .check = [&updater] { updater.check(Updater::Silent::no); },
                        .install = [&updater] { updater.install(); }},
            .loginItem = parts.loginItem,
            .remembered = parts.remembered,
            .requests = {.openLog = parts.openLog, .quit = parts.quit, .couple = parts.couple},
            .clock = parts.clock,
            .scheduler = parts.scheduler,
            .clockTime = localClockTime(parts.clock),
            .scheme = parts.appearance.colors.scheme()};
}

void MenuPanel::toggle(const TrayClick& click) {
    const ActivationToken token(click.activationToken);
    window().toggle(placeOf(click));
}

void MenuPanel::open(const std::string& activationToken) {
    const ActivationToken token(activationToken);
    window().open(std::nullopt);
}

PanelWindow& MenuPanel::window() {
    if (!window_) window_.emplace(panelObjects(parts_), parts_.appearance.images, host());
    return *window_;
}

PanelHost MenuPanel::host() const {
    if (parts_.stays) return PanelHost::standing;
    return plainX11Display(displayEnvironment()) ? PanelHost::popup : PanelHost::window;
}

} // namespace wegslot
