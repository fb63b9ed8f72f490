// Which display Qt shows Wegslot on, if there is one at all.
#pragma once

#include "platform/linux/display_environment.h"

#include <QCoreApplication>

#include <memory>
#include <string>

namespace wegslot {

/// Which of Qt's platforms to try, in this order. X11 first, under Wayland too: only there may a
/// window be put where it belongs, above full-screen ones. The last one needs no display, so
/// that one that takes no connections keeps nobody from being locked.
[[nodiscard]] std::string qtPlatforms(const DisplayEnvironment& environment);

[[nodiscard]] bool hasDisplay(const DisplayEnvironment& environment);

/// Qt's application object with windows, on the platform that the user chose (QT_QPA_PLATFORM) or
/// on the first of ours that works.
[[nodiscard]] std::unique_ptr<QCoreApplication> windowedApplication(int& argc, char** argv);

/// Qt's application object with windows that nobody sees.
[[nodiscard]] std::unique_ptr<QCoreApplication> screenlessApplication(int& argc, char** argv);

/// Qt's application object without windows.
[[nodiscard]] std::unique_ptr<QCoreApplication> plainApplication(int& argc, char** argv);

/// Whether the application's windows can be put in front of everything.
[[nodiscard]] bool placesWindows();

} // namespace wegslot
