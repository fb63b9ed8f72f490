#include "app/qt/display.h"

#include <QApplication>

namespace wegslot {
namespace {

/// A choice that Qt reads in the environment while the application is made: ours alone, not that of
/// the programs we start. Another's choice stays.
class Choice {
public:
    Choice(const char* name, const std::string& value)
        : name_(name),
          isOurs_(qEnvironmentVariableIsEmpty(name)) {
        if (isOurs_) qputenv(name_, value.c_str());
    }
    Choice(const Choice&) = delete;
    Choice& operator=(const Choice&) = delete;
    ~Choice() {
        if (isOurs_) qunsetenv(name_);
    }

private:
    const char* name_;
    bool isOurs_;
};

/// Nothing here needs GLib's loop, which takes more processor time to turn.
struct OwnLoop : Choice {
    OwnLoop() : Choice("QT_NO_GLIB", "1") {}
};

std::unique_ptr<QCoreApplication> applicationOn(const std::string& platforms, int& argc,
                                                char** argv) {
    const OwnLoop loop;
    const Choice platform("QT_QPA_PLATFORM", platforms);
    auto application = std::make_unique<QApplication>(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return application;
}

} // namespace

std::string qtPlatforms(const DisplayEnvironment& environment) {
    return hasDisplay(environment) ? "xcb;wayland;offscreen" : "offscreen";
}

bool hasDisplay(const DisplayEnvironment& environment) {
    return !environment.x11Display.empty() || !environment.waylandDisplay.empty();
}

std::unique_ptr<QCoreApplication> windowedApplication(int& argc, char** argv) {
    return applicationOn(qtPlatforms(displayEnvironment()), argc, argv);
}

std::unique_ptr<QCoreApplication> screenlessApplication(int& argc, char** argv) {
    return applicationOn("offscreen", argc, argv);
}

std::unique_ptr<QCoreApplication> plainApplication(int& argc, char** argv) {
    const OwnLoop loop;
    return std::make_unique<QCoreApplication>(argc, argv);
}

bool placesWindows() { return QGuiApplication::platformName() == "xcb"; }

} // namespace wegslot
