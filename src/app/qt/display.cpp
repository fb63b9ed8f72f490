#include "app/qt/display.h"

#include <QApplication>

namespace wegslot {
namespace {

constexpr auto choice = "QT_QPA_PLATFORM";

std::unique_ptr<QCoreApplication> applicationOn(const std::string& platforms, int& argc,
                                                char** argv) {
    const bool isChosen = !qEnvironmentVariableIsEmpty(choice);
    if (!isChosen) qputenv(choice, platforms.c_str());
    auto application = std::make_unique<QApplication>(argc, argv);
    if (!isChosen) qunsetenv(choice); // ours alone, not that of the programs we start
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

bool placesWindows() { return QGuiApplication::platformName() == "xcb"; }

} // namespace wegslot
